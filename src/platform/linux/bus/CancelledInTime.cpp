#include "platform/linux/bus/CancelledInTime.hpp"

#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace orvel {

CancelledInTime::CancelledInTime(const TimeLimit& limit, GCancellable* cancellation)
    : cancellable_(g_cancellable_new()), outer_(cancellation) {
  thread_ = std::jthread([this, limit](const std::stop_token& ended) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any changed;
    const auto hasEnded = [&] { return ended.stop_requested(); };
    if (!changed.wait_for(lock, ended, limit.left(), hasEnded)) g_cancellable_cancel(cancellable_.get());
  });
  const auto cancel = +[](GCancellable*, gpointer inner) { g_cancellable_cancel(G_CANCELLABLE(inner)); };
  if (outer_ != nullptr) link_ = g_cancellable_connect(outer_, G_CALLBACK(cancel), cancellable_.get(), nullptr);
}

CancelledInTime::~CancelledInTime() {
  if (outer_ != nullptr) g_cancellable_disconnect(outer_, link_);
}

}  // namespace orvel
