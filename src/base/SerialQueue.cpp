#include "base/SerialQueue.hpp"

#include "base/WorkerThreads.hpp"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace orvel {

using Moment = std::chrono::steady_clock::time_point;

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

}  // namespace orvel
