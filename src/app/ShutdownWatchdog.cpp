#include "app/ShutdownWatchdog.hpp"

#include "platform/Platform.hpp"

#include <chrono>
#include <cstdlib>

namespace orvel {
namespace {

constexpr std::chrono::seconds desktopTimeout{3};
constexpr std::chrono::seconds processTimeout{2};

}  // namespace

ShutdownWatchdog::~ShutdownWatchdog() {
  ended_.release();
  if (thread_.joinable()) thread_.join();
}

void ShutdownWatchdog::begin(int exitCode) {
  if (begun_.test_and_set()) return;
  thread_ = std::thread([this, exitCode] { waitForEnd(exitCode); });
}

void ShutdownWatchdog::waitForEnd(int exitCode) {
  if (ended_.try_acquire_for(desktopTimeout)) return;
  platform_.giveUp();
  if (!ended_.try_acquire_for(processTimeout)) std::_Exit(exitCode);
}

}  // namespace orvel
