#pragma once

#include "desktop/AccessibleProgram.hpp"
#include "desktop/QRReader.hpp"
#include "desktop/TrayHost.hpp"
#include "desktop/X11Witness.hpp"
#include "program/DesktopFixture.hpp"
#include "program/HostProcess.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <boost/json/parse.hpp>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// A login with a window manager, a message bus and somebody who needs a screen reader, but without a tray until one is
/// started.
struct PanelFixture : DesktopFixture {
  PanelFixture() {
    if (!bus.switchOnAccessibility()) throw std::runtime_error("no accessibility on the bus");
  }

  void startTray(const TrayHost::Look& look) {
    tray.emplace(desktop, bus, look);
    tray->start();
  }

  void startHost(const std::vector<std::string>& options = {}) {
    host.emplace(desktop, bus.environment(), options);
    ASSERT_TRUE(host->waitUntilListening()) << host->process().output();
  }

  /// Runs another Orvel, as a person who starts it again. Its exit code.
  std::optional<int> startAgain(const std::vector<std::string>& options = {}) {
    std::vector<std::string> command{ORVEL_PROGRAM};
    command.insert(command.end(), options.begin(), options.end());
    ChildProcess again({.command = command, .environment = bus.environment()});
    const auto exitCode = again.waitForExit();
    output = again.output();
    return exitCode;
  }

  /// The toolkit reports nothing of a program before its first window.
  bool waitUntilOpen() {
    if (!panel) panel.emplace(bus, host->process().pid());
    return eventually([this] { return isOpen(); });
  }
  bool waitUntilClosed() {
    return eventually([this] { return !isOpen(); });
  }
  bool isOpen() const { return panel->find("label", "Orvel").has_value(); }

  bool shows(const std::string& text) const {
    return panel->waitFor([&](const AccessibleProgram::Nodes& nodes) {
      return std::ranges::any_of(nodes, [&](const auto& node) { return node.name == text || node.text == text; });
    });
  }

  /// Whatever networks the computer is on just now.
  bool showsThatItListens() const {
    return panel->waitFor([](const AccessibleProgram::Nodes& nodes) {
      return std::ranges::any_of(nodes, [](const auto& node) { return node.name.starts_with("Listening on "); });
    });
  }

  bool press(const std::string& button) const { return panel->press("push button", button); }

  /// What the QR code that is on the screen holds, once there is one.
  boost::json::object scannedPayload() {
    std::optional<std::string> text;
    eventually([&] {
      const std::string file = (desktop.home() / "screen.png").string();
      if (view.photograph(file)) text = QRReader::textIn(file);
      return text.has_value();
    });
    return text ? boost::json::parse(*text).as_object() : boost::json::object{};
  }

  std::string scannedCode() {
    const auto payload = scannedPayload();
    const auto* token = payload.if_contains("token");
    return token == nullptr ? std::string() : std::string(token->as_string());
  }

  static phone::PhoneClient connectPaired(const std::string& code, const std::string& device) {
    auto client = phone::PhoneClient::connect("127.0.0.1", HostProcess::port, phoneTimeout);
    if (!client) throw std::runtime_error(client.error().text);
    if (!client->pair(code, device, phoneTimeout)) throw std::runtime_error("not paired");
    return std::move(*client);
  }

  static bool isDisconnected(phone::PhoneClient& client) {
    const auto failure = client.idle(phoneTimeout);
    return failure && failure->kind == phone::Error::Kind::ended;
  }

  std::optional<TrayHost> tray;
  std::optional<HostProcess> host;
  std::optional<AccessibleProgram> panel;
  std::string output;
};

}  // namespace orvel
