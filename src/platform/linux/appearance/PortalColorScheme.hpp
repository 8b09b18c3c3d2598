#pragma once

#include "base/Executor.hpp"
#include "base/Guarded.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <gio/gio.h>

#include <memory>
#include <optional>
#include <thread>

namespace orvel {

/// Whether the user wants programs to be dark, as the desktop's portal for settings says. It is asked as soon as it is
/// there, and never started.
///
/// Threads: made and destroyed on one, which waits for nobody; `isDark` on any.
class PortalColorScheme {
 public:
  /// `changed` is called on any thread, for a moment even after this object has gone.
  explicit PortalColorScheme(Task changed);
  ~PortalColorScheme();
  PortalColorScheme(const PortalColorScheme&) = delete;
  PortalColorScheme& operator=(const PortalColorScheme&) = delete;

  /// Nothing where nobody has said.
  std::optional<bool> isDark() const;

 private:
  class Answer;

  void connect(const std::string& address);

  const std::shared_ptr<Answer> answer_;
  const GLibPointer<GCancellable> cancellation_;
  std::optional<MessageBus> bus_;  // for the thread, while that runs
  std::thread thread_;
};

}  // namespace orvel
