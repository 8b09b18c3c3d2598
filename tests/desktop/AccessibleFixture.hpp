#pragma once

#include "desktop/LeafFixture.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/WidgetWindow.hpp"
#include "platform/linux/SystemAccessibilityTree.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string_view>
#include <thread>

namespace orvel {

/// A desktop with a message bus and a window manager, on which programs tell of their user interfaces.
struct AccessibleFixture : testing::Test {
  AccessibleFixture() {
    EXPECT_TRUE(bus.waitForAccessibility());
    waitForWindowManager();
  }

  /// Waits until something becomes true. False when it does not in time.
  static bool eventually(const std::function<bool()>& isTrue, Milliseconds limit = patience) {
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
  LeafSet leaves{desktop};
  SystemAccessibilityTree tree{leaves.connection(), bus.address()};

 private:
  /// Whether the window manager takes a new window into its care. When it starts it has an ear for windows before it
  /// does anything about them, so one is shown until it does.
  bool caresForWindows(xcb_window_t trial) {
    xcb_connection_t* server = leaves.connection().get();
    constexpr std::string_view name = "WM_STATE";
    xcb_map_window(server, trial);
    const X11Answer<xcb_intern_atom_reply_t> atom{
        xcb_intern_atom_reply(server, xcb_intern_atom(server, false, name.size(), name.data()), nullptr)};
    const X11Answer<xcb_get_property_reply_t> value{xcb_get_property_reply(
        server, xcb_get_property(server, false, trial, atom->atom, XCB_ATOM_ANY, 0, 1), nullptr)};
    return value->type != XCB_ATOM_NONE;
  }

  void waitForWindowManager() {
    xcb_connection_t* server = leaves.connection().get();
    const xcb_window_t trial = xcb_generate_id(server);
    xcb_create_window(server, XCB_COPY_FROM_PARENT, trial, leaves.connection().root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    EXPECT_TRUE(eventually([&] { return caresForWindows(trial); })) << "no window manager";
    xcb_destroy_window(server, trial);
  }

  ChildProcess windowManager_{{.command = {"openbox", "--sm-disable"}, .environment = bus.environment()}};
};

}  // namespace orvel
