#pragma once

#include <pthread.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

namespace orvel {

/// A thread that calls into the system, which may hold it up when it is to end: it is then left to end alone.
///
/// Threads: its owner's.
class LeavableThread {
 public:
  LeavableThread() = default;

  /// Waits a moment for the end of the thread, which must have been asked for.
  ~LeavableThread() {
    if (!thread_.joinable()) return;
    if (ended_.wait_for(endTimeout) == std::future_status::ready) {
      thread_.join();
    } else {
      thread_.detach();
    }
  }
  LeavableThread(const LeavableThread&) = delete;
  LeavableThread& operator=(const LeavableThread&) = delete;

  /// Starts it unless it runs. `body` owns all that it needs. When the system has no thread, the next call tries again.
  void start(std::function<void()> body) {
    if (thread_.joinable()) return;
    std::packaged_task<void()> work(std::move(body));
    ended_ = work.get_future();
    // Signals are for the main thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
      thread_ = std::thread(std::move(work));
    } catch (const std::system_error&) {
      ended_ = {};
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

 private:
  static constexpr std::chrono::seconds endTimeout{1};

  std::thread thread_;
  std::future<void> ended_;
};

}  // namespace orvel
