#pragma once

#include <cstdint>
#include <optional>

namespace orvel {

class X11Connection;

/// The number under which the server's input extension sends its events. Nothing when it is missing, or too old to
/// report of input also while another program has grabbed the pointer. Waits for the server. Threads: any.
std::optional<std::uint8_t> rawInputOpcode(const X11Connection& connection);

/// Has the server report raw input of these kinds from all devices, instead of those before. Threads: any.
void selectRawInput(const X11Connection& connection, std::uint32_t events);

}  // namespace orvel
