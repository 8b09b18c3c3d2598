#include "app/DesktopPatience.hpp"

#include "platform/Platform.hpp"

#include <cstdlib>

namespace orvel {
namespace {

constexpr std::chrono::seconds untilParting{3};
constexpr std::chrono::seconds untilTheProcessEnds{2};

}  // namespace

DesktopPatience::~DesktopPatience() {
  {
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
  }
  changed_.notify_all();
  if (wait_.joinable()) wait_.join();
}

void DesktopPatience::begin(int exitCode) {
  const std::lock_guard lock(mutex_);
  if (wait_.joinable()) return;
  wait_ = std::thread([this, exitCode] { waitForEnd(exitCode); });
}

void DesktopPatience::waitForEnd(int exitCode) {
  if (endsWithin(untilParting)) return;
  platform_.giveUp();
  if (!endsWithin(untilTheProcessEnds)) std::_Exit(exitCode);
}

/// Whether the program has come to its end within `limit`.
bool DesktopPatience::endsWithin(std::chrono::seconds limit) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [this] { return hasEnded_; });
}

}  // namespace orvel
