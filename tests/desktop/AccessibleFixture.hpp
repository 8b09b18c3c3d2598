#pragma once

#include "desktop/LeafFixture.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/WidgetWindow.hpp"
#include "desktop/WindowManager.hpp"
#include "platform/linux/SystemAccessibilityTree.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace orvel {

/// A desktop with a message bus and a window manager, on which programs report their user interfaces.
struct AccessibleFixture : testing::Test {
  AccessibleFixture() { EXPECT_TRUE(bus.waitForAccessibility()); }

  /// Waits until something becomes true. False when it does not in time.
  static bool eventually(const std::function<bool()>& isTrue, Milliseconds limit = timeout) {
    const Deadline deadline(limit);
    while (!isTrue()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(10));
    }
    return true;
  }

  void click(Point position) {
    leaves.events.post(MouseEvent{.type = MouseEventType::moved, .position = position});
    leaves.events.post(MouseEvent{.type = MouseEventType::leftDown, .position = position});
    leaves.events.post(MouseEvent{.type = MouseEventType::leftUp, .position = position});
    leaves.events.flush();
  }

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
  LeafSet leaves{desktop};
  SystemAccessibilityTree tree{leaves.findWindow(), bus.address()};
};

}  // namespace orvel
