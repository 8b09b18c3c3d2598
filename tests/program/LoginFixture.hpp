#pragma once

#include "desktop/DesktopView.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/WindowManager.hpp"
#include "program/HostProcess.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orvel {

/// A desktop as people have it, with a window manager and a message bus, and a phone that is all they have in their
/// hands.
struct LoginFixture : testing::Test {
  void SetUp() override {
    ASSERT_TRUE(host.waitUntilListening()) << host.process().output();
    auto connected = phone::PhoneClient::connect("127.0.0.1", HostProcess::port, phonePatience);
    ASSERT_TRUE(connected) << connected.error().text;
    phone.emplace(std::move(*connected));
    ASSERT_TRUE(phone->pair(host.code(), "Test phone", phonePatience));
  }

  void TearDown() override {
    if (HasFailure()) photograph(std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
  }

  /// Leaves a picture of the desktop for people to look at.
  bool photograph(const std::string& name) { return view.photograph(ORVEL_SCREENSHOTS "/" + name + ".png"); }

  /// Waits until something becomes true. False when it does not in time.
  static bool eventually(const std::function<bool()>& isTrue, Milliseconds limit = Milliseconds(20'000)) {
    const Deadline deadline(limit);
    while (!isTrue()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  }

  static constexpr phone::Seconds phonePatience{30};

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
  DesktopView view{desktop.display()};
  HostProcess host{desktop, bus.environment()};
  std::optional<phone::PhoneClient> phone;
};

}  // namespace orvel
