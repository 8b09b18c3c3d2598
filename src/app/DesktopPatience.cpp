#include "app/DesktopPatience.hpp"

#include "platform/Platform.hpp"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace orvel {
namespace {

constexpr std::chrono::seconds limit{3};

void waitFor(const std::stop_token& ended, Platform& platform) {
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any changed;
  if (!changed.wait_for(lock, ended, limit, [&] { return ended.stop_requested(); })) platform.giveUp();
}

}  // namespace

void DesktopPatience::begin() {
  wait_.withLock([this](std::optional<std::jthread>& wait) {
    if (!wait) wait.emplace([&platform = platform_](const std::stop_token& ended) { waitFor(ended, platform); });
  });
}

}  // namespace orvel
