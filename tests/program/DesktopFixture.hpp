#pragma once

#include "desktop/DesktopView.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/Timeout.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/WindowManager.hpp"
#include "tools/Deadline.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

namespace orvel {

/// A desktop as people have it, with a window manager and a message bus. A test that fails leaves a picture of it.
struct DesktopFixture : testing::Test {
  void TearDown() override {
    if (HasFailure()) photograph(testing::UnitTest::GetInstance()->current_test_info()->name());
  }

  /// Leaves a picture of the desktop for people to look at.
  bool photograph(const std::string& name) const { return view.photograph(ORVEL_SCREENSHOTS "/" + name + ".png"); }

  /// Waits until something becomes true. False when it does not in time.
  static bool eventually(const std::function<bool()>& isTrue, Milliseconds limit = Milliseconds(20'000)) {
    const Deadline deadline(limit);
    while (!isTrue()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  }

  static constexpr phone::Seconds phoneTimeout{30};

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
  DesktopView view{desktop.display()};
};

}  // namespace orvel
