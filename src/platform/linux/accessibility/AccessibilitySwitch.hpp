#pragma once

#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>

#include <string>
#include <thread>

namespace orvel {

/// Has the programs of this login tell of their user interfaces: some do only if accessibility was on before they
/// started, and it is off until somebody asks for it.
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
