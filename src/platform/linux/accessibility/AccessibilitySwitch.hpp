#pragma once

#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>

#include <string>
#include <thread>

namespace orvel {

/// Switches accessibility on in this login, which is off by default: some programs expose their user interface only if
/// it was on before they started.
///
/// Threads: made and destroyed by its owner, who waits for nothing; a thread of its own ends when that is done.
class AccessibilitySwitch {
 public:
  explicit AccessibilitySwitch(const std::string& sessionBus);
  ~AccessibilitySwitch();
  AccessibilitySwitch(const AccessibilitySwitch&) = delete;
  AccessibilitySwitch& operator=(const AccessibilitySwitch&) = delete;

 private:
  const GLibPointer<GCancellable> cancellation_;
  std::thread thread_;
};

}  // namespace orvel
