#include "app/DesktopPatience.hpp"

#include "platform/Platform.hpp"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <stop_token>

namespace orvel {
namespace {

constexpr std::chrono::seconds untilParting{3};
constexpr std::chrono::seconds untilTheProcessEnds{2};

/// Whether it has come to its end within `limit`.
bool endsWithin(std::chrono::seconds limit, const std::stop_token& ended) {
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any changed;
  return changed.wait_for(lock, ended, limit, [&] { return ended.stop_requested(); });
}

void waitForEnd(const std::stop_token& ended, Platform& platform, int exitCode) {
  if (endsWithin(untilParting, ended)) return;
  platform.giveUp();
  if (!endsWithin(untilTheProcessEnds, ended)) std::_Exit(exitCode);
}

}  // namespace

void DesktopPatience::begin(int exitCode) {
  wait_.withLock([this, exitCode](std::optional<std::jthread>& wait) {
    if (wait) return;
    wait.emplace(
        [&platform = platform_, exitCode](const std::stop_token& ended) { waitForEnd(ended, platform, exitCode); });
  });
}

}  // namespace orvel
