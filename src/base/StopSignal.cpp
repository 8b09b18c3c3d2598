#include "base/StopSignal.hpp"

namespace orvel {

StopSignal::Waiter::Waiter(StopSignal& signal, std::mutex& mutex, std::condition_variable& changed)
    : signal_(signal), mutex_(mutex), changed_(changed) {
  const std::lock_guard lock(signal_.mutex_);
  place_ = signal_.waiters_.insert(signal_.waiters_.end(), this);
}

StopSignal::Waiter::~Waiter() {
  const std::lock_guard lock(signal_.mutex_);
  signal_.waiters_.erase(place_);
}

void StopSignal::give() {
  isGiven_ = true;
  const std::lock_guard lock(mutex_);
  for (const Waiter* waiter : waiters_) {
    // Whoever has looked already, and is about to wait, waits once this lock is free.
    { const std::lock_guard passing(waiter->mutex_); }
    waiter->changed_.notify_all();
  }
}

}  // namespace orvel
