#include "base/WorkerThreads.hpp"

#include "base/SerialQueue.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace orvel {
namespace {

/// More than the phones of any household; whoever finds them all busy waits.
constexpr std::size_t mostThreads = 64;

}  // namespace

WorkerThreads::~WorkerThreads() {
  finish();
}

std::unique_ptr<Executor> WorkerThreads::makeSerialQueue() {
  return std::make_unique<SerialQueue>(*this);
}

void WorkerThreads::finish() {
  stop_.give();
  std::unique_lock lock(mutex_);
  ended_.wait(lock, [this] { return running_ == 0; });
}

void WorkerThreads::run(Task body) {
  const std::lock_guard lock(mutex_);
  if (stop_.isGiven()) return;
  if (running_ < mostThreads && startThread(body)) {
    ++running_;
  } else {
    waiting_.push_back(std::move(body));
  }
}

bool WorkerThreads::startThread(const Task& body) {
  try {
    std::thread([this, body] { work(body); }).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

void WorkerThreads::work(Task body) {
  while (body) {
    body();
    body = nextOrEnd();
  }
}

Task WorkerThreads::nextOrEnd() {
  const std::lock_guard lock(mutex_);
  if (!waiting_.empty() && !stop_.isGiven()) {
    Task next = std::move(waiting_.front());
    waiting_.pop_front();
    return next;
  }
  --running_;
  // Told while the lock is held: once it is free the owner may destroy this object.
  ended_.notify_all();
  return nullptr;
}

}  // namespace orvel
