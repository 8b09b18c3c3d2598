#pragma once

#include "desktop/X11Witness.hpp"
#include "program/HostProcess.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace orvel {

inline constexpr phone::Seconds phoneTimeout{10};

/// A desktop with the host on it and a witness of what happens there.
struct ProgramFixture : testing::Test {
  void SetUp() override {
    ASSERT_TRUE(host.waitUntilListening()) << host.process().output();
    code = host.code();  // the host has made it by now
  }

  static phone::PhoneClient connect(const std::string& address = "127.0.0.1") {
    auto client = phone::PhoneClient::connect(address, HostProcess::port, phoneTimeout);
    if (!client) throw std::runtime_error(client.error().text);
    return std::move(*client);
  }

  phone::PhoneClient connectPaired(const std::string& device = "Test phone") {
    auto client = connect();
    const auto welcome = client.pair(code, device, phoneTimeout);
    if (!welcome) throw std::runtime_error(welcome.error().text);
    return client;
  }

  /// Waits until everything that the phone has sent is done and visible to others.
  void settle(phone::PhoneClient& client) { ASSERT_TRUE(client.ping(phoneTimeout)); }

  bool waitForInput(X11Witness::Kind kind, int detail) {
    return witness.waitFor([&](const X11Witness::Inputs& inputs) {
      for (const auto& input : inputs) {
        if (input.kind == kind && input.detail == detail) return true;
      }
      return false;
    });
  }

  /// Waits until the last that was seen of the pointer is at this place.
  bool waitForPointer(int x, int y) {
    return witness.waitFor([&](const X11Witness::Inputs& inputs) {
      return !inputs.empty() && std::pair(inputs.back().x, inputs.back().y) == std::pair(x, y);
    });
  }

  VirtualDesktop desktop;
  X11Witness witness{desktop.display()};
  HostProcess host{desktop};
  std::string code;
};

}  // namespace orvel
