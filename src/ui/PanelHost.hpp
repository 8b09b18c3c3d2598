#pragma once

#include "base/PermissionNotice.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The state of the host that the panel shows.
struct PanelState {
  bool isRunning = false;
  bool accessibilityGranted = false;
  std::vector<std::string> clients{};
  std::optional<std::string> lastError{};
  bool mirroring = false;
  std::uint16_t port = 0;
  std::optional<std::string> address{};  ///< Nothing while the computer is on no network.
  PermissionNotice permission{};         ///< What to say while `accessibilityGranted` is false.
};

/// What a phone needs to pair.
struct PairingInvitation {
  std::string payload;      ///< What the QR code holds.
  std::string displayCode;  ///< The code for the eye.
};

/// The host behind the panel: what it shows, and what its controls do. Threads: the main thread; nothing here waits.
class PanelHost {
 public:
  virtual ~PanelHost() = default;

  virtual PanelState state() const = 0;

  virtual PairingInvitation invitation() = 0;

  /// Asks the desktop anew whether this program may post input.
  virtual void refreshPermission() = 0;

  /// Has the desktop ask the user for the permission, and opens its settings. For notices with an action.
  virtual void requestPermission() = 0;

  /// Listens anew, which disconnects every phone.
  virtual void restart() = 0;

  /// Replaces the pairing code, then disconnects every phone. Until that is done, asking again does nothing.
  virtual void renewCode() = 0;

  /// Ends the program.
  virtual void quit() = 0;
};

}  // namespace orvel
