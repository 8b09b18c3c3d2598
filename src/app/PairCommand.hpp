#pragma once

namespace orvel {

/// Prints what a phone needs to pair, as text and as a QR code: for a computer without a tray, and over a terminal.
/// Returns the exit code. Threads: the main thread.
int printPairing();

}  // namespace orvel
