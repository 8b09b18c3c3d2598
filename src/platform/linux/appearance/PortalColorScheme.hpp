#pragma once

#include "base/Executor.hpp"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <array>
#include <memory>
#include <optional>

namespace orvel {

/// Whether the user wants programs to be dark, as the desktop's portal for settings says. It is asked as soon as it is
/// there, and never started. Nothing here waits for it.
///
/// Threads: the main thread.
class PortalColorScheme {
 public:
  /// Asks once the main loop runs. `changed` is called for every other answer than the last one.
  explicit PortalColorScheme(Task changed);
  PortalColorScheme(const PortalColorScheme&) = delete;
  PortalColorScheme& operator=(const PortalColorScheme&) = delete;

  /// Nothing where there is no answer, or the user has no preference.
  std::optional<bool> isDark() const { return isDark_; }

 private:
  void connect();
  void ask();
  void take(const QDBusPendingCall& answer);

  const Task changed_;
  QTimer askTimer_;  // merges the signals that come in a burst
  std::optional<QDBusConnection> bus_;
  std::unique_ptr<QDBusServiceWatcher> owner_;
  std::array<std::unique_ptr<QDBusPendingCallWatcher>, 2> questions_;  // one by each method
  std::optional<bool> isDark_;
};

}  // namespace orvel
