#pragma once

#include "input/AccessibilityTree.hpp"
#include "platform/linux/accessibility/AccessibilitySwitch.hpp"
#include "platform/linux/accessibility/WindowAtPoint.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <optional>
#include <string>

namespace orvel {

/// The user interface of all programs by AT-SPI: the backend finds the window at a point and whose it is, and
/// its program says what is there. Nothing runs while nobody asks.
///
/// Threads: `elementAt` one at a time.
class SystemAccessibilityTree final : public AccessibilityTree {
 public:
  /// Asks for accessibility to be on in this login, without waiting for it. `sessionBus` is the address of its bus.
  explicit SystemAccessibilityTree(FindWindowAt findWindow, const std::string& sessionBus = sessionBusAddress());

  std::optional<AccessibleElement> elementAt(Point position) override;

 private:
  bool connect(const TimeLimit& limit);

  const FindWindowAt findWindow_;
  const std::string sessionBus_;
  std::optional<MessageBus> bus_;  // that on which programs speak of their user interfaces, once it was needed
  const AccessibilitySwitch switch_;
};

}  // namespace orvel
