#pragma once

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/bus/TimeLimit.hpp"

#include <gio/gio.h>

#include <thread>

namespace orvel {

/// Cancels what waits, when it takes too long or when somebody else does not want it any more. For what has no time
/// limit of its own.
///
/// Threads: made and destroyed on one.
class CancelledInTime {
 public:
  /// `cancellation` may be null. Throws std::system_error when there is no thread to be had.
  explicit CancelledInTime(const TimeLimit& limit, GCancellable* cancellation = nullptr);
  ~CancelledInTime();
  CancelledInTime(const CancelledInTime&) = delete;
  CancelledInTime& operator=(const CancelledInTime&) = delete;

  GCancellable* get() const { return cancellable_.get(); }

 private:
  const GLibPointer<GCancellable> cancellable_;
  GCancellable* const outer_;
  gulong link_ = 0;
  std::jthread thread_;
};

}  // namespace orvel
