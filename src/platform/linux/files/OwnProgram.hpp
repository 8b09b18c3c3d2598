#pragma once

#include <string>

namespace orvel {

/// The absolute path by which this program can be started again. An AppImage is started as a whole; a program that was
/// replaced by a newer one since it started is the newer one. Empty when the system does not tell. Reads the
/// environment. Threads: as the environment.
std::string ownProgram();

}  // namespace orvel
