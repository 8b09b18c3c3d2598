#pragma once

#include "program/DesktopFixture.hpp"
#include "program/HostProcess.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace orvel {

/// A desktop as people have it, with a window manager and a message bus, and a phone that is all they have in their
/// hands.
struct LoginFixture : DesktopFixture {
  void SetUp() override {
    ASSERT_TRUE(host.waitUntilListening()) << host.process().output();
    auto connected = phone::PhoneClient::connect("127.0.0.1", HostProcess::port, phoneTimeout);
    ASSERT_TRUE(connected) << connected.error().text;
    phone.emplace(std::move(*connected));
    ASSERT_TRUE(phone->pair(host.code(), "Test phone", phoneTimeout));
  }

  HostProcess host{desktop, bus.environment()};
  std::optional<phone::PhoneClient> phone;
};

}  // namespace orvel
