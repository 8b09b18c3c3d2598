#include "base/WorkerThreads.hpp"

#include <chrono>
#include <map>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace orvel {
namespace {

/// More than the phones of any household; whoever finds them all busy waits.
constexpr std::size_t mostThreads = 64;

using Moment = std::chrono::steady_clock::time_point;

/// Runs tasks in the order of posting, never two at once, on a thread that lives only while there is work.
///
/// Threads: any. A queue may be destroyed while it has work, also by one of its own tasks; what was posted still runs.
class SerialQueue final : public Executor {
 public:
  explicit SerialQueue(WorkerThreads& threads);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;

 private:
  struct State;
  static void drain(State& state);

  std::shared_ptr<State> state_;
};

struct SerialQueue::State {
  explicit State(WorkerThreads& owner) : threads(owner) {}

  WorkerThreads& threads;
  std::mutex mutex;
  std::condition_variable changed;
  std::multimap<Moment, Task> tasks;  // equal moments keep the order of posting
  bool draining = false;
};

SerialQueue::SerialQueue(WorkerThreads& threads) : state_(std::make_shared<State>(threads)) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::post(Task task) {
  postAfter(Seconds(0), std::move(task));
}

void SerialQueue::postAfter(Seconds delay, Task task) {
  const auto wait = std::chrono::duration_cast<Moment::duration>(delay);
  const std::lock_guard lock(state_->mutex);
  state_->tasks.emplace(std::chrono::steady_clock::now() + wait, std::move(task));
  if (state_->draining) {
    state_->changed.notify_one();
  } else {
    state_->draining = true;
    state_->threads.run([state = state_] { drain(*state); });
  }
}

void SerialQueue::drain(State& state) {
  StopSignal& stop = state.threads.stopSignal();
  const StopSignal::Waiter waiter(stop, state.mutex, state.changed);
  std::unique_lock lock(state.mutex);
  while (!state.tasks.empty() && !stop.isGiven()) {
    const Moment due = state.tasks.begin()->first;
    if (due > std::chrono::steady_clock::now()) {
      state.changed.wait_until(lock, due, [&] { return stop.isGiven() || state.tasks.begin()->first < due; });
      continue;
    }
    Task task = std::move(state.tasks.extract(state.tasks.begin()).mapped());
    lock.unlock();
    task();
    task = nullptr;
    lock.lock();
  }
  std::multimap<Moment, Task> dropped;
  if (stop.isGiven()) dropped.swap(state.tasks);
  state.draining = false;
  lock.unlock();  // what tasks held on to may post as it goes
}

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
  // Notified while the lock is held: once it is free the owner may destroy this object.
  ended_.notify_all();
  return nullptr;
}

}  // namespace orvel
