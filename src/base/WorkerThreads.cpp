#include "base/WorkerThreads.hpp"

#include "base/SerialQueue.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace orvel {

WorkerThreads::~WorkerThreads() {
  finish();
}

std::unique_ptr<Executor> WorkerThreads::makeSerialQueue(std::string label) {
  return std::make_unique<SerialQueue>(std::move(label), *this);
}

void WorkerThreads::finish() {
  stop_.request_stop();
  std::unique_lock lock(mutex_);
  ended_.wait(lock, [this] { return running_ == 0; });
}

bool WorkerThreads::run(Task body) {
  const std::lock_guard lock(mutex_);
  if (stop_.stop_requested()) return false;
  try {
    std::thread([this, body = std::move(body)]() mutable {
      body();
      body = nullptr;
      threadEnded();
    }).detach();
  } catch (const std::system_error&) {
    return false;
  }
  ++running_;
  return true;
}

void WorkerThreads::threadEnded() {
  // Told while the lock is held: once it is free the owner may destroy this object.
  const std::lock_guard lock(mutex_);
  --running_;
  ended_.notify_all();
}

}  // namespace orvel
