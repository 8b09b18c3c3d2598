#pragma once

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>

namespace orvel {

/// Says once and for all that it is time to end, and wakes those who wait for something else meanwhile. Not yet every
/// C++ library has one. Threads: any.
class StopSignal {
 public:
  /// Where somebody waits, for as long as this lives. Threads: made and destroyed while `mutex` is not held.
  class Waiter {
   public:
    Waiter(StopSignal& signal, std::mutex& mutex, std::condition_variable& changed);
    ~Waiter();
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

   private:
    friend StopSignal;

    StopSignal& signal_;
    std::mutex& mutex_;
    std::condition_variable& changed_;
    std::list<Waiter*>::iterator place_;
  };

  /// Whoever waits sees it: what it waits for is looked at again after this.
  void give();
  bool isGiven() const { return isGiven_; }

 private:
  std::atomic<bool> isGiven_ = false;
  std::mutex mutex_;
  std::list<Waiter*> waiters_;
};

}  // namespace orvel
