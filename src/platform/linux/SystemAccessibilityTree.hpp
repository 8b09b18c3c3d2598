#pragma once

#include "input/AccessibilityTree.hpp"
#include "platform/linux/accessibility/AccessibilitySwitch.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <optional>
#include <string>

namespace orvel {

class X11Connection;

/// The user interface of all programs by AT-SPI: the X server tells which window is at a point and whose it is, and
/// its program what is there. Nothing runs while nobody asks.
///
/// Threads: `elementAt` one at a time.
class SystemAccessibilityTree final : public AccessibilityTree {
 public:
  /// Asks for accessibility to be on in this login, without waiting for it. `sessionBus` is the address of its bus.
  explicit SystemAccessibilityTree(X11Connection& connection, const std::string& sessionBus = sessionBusAddress());

  std::optional<AccessibleElement> elementAt(Point position) override;

 private:
  bool connect(const TimeLimit& limit);

  X11Connection& connection_;
  const std::string sessionBus_;
  std::optional<MessageBus> bus_;  // that on which programs speak of their user interfaces, once it was needed
  const AccessibilitySwitch switch_;
};

}  // namespace orvel
