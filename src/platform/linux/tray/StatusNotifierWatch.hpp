#pragma once

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <functional>
#include <memory>

namespace orvel {

/// Follows whether the desktop shows status notifier items, the trays' protocol on the message bus. Nothing here waits
/// for the program that is asked.
///
/// Threads: the main thread.
class StatusNotifierWatch {
 public:
  enum class Host {
    unknown,  ///< There is no answer yet, or the one who should answer hangs.
    absent,
    present
  };

  /// `answered` is called after every answer, also if it is the old one, but not before this returns.
  explicit StatusNotifierWatch(std::function<void()> answered);
  StatusNotifierWatch(const StatusNotifierWatch&) = delete;
  StatusNotifierWatch& operator=(const StatusNotifierWatch&) = delete;

  Host host() const;

  /// Asks again, soon.
  void ask() { askTimer_.start(); }

 private:
  void followSignals();
  void followOwner();
  void askNow();
  void take();
  void report(Host host);

  const std::function<void()> answered_;
  QDBusConnection bus_;
  QDBusServiceWatcher owner_;
  QTimer askTimer_;    // merges the signals that come in a burst
  QTimer graceTimer_;  // runs while the desktop is getting ready to show items
  std::unique_ptr<QDBusPendingCallWatcher> question_;
  Host host_ = Host::unknown;
};

}  // namespace orvel
