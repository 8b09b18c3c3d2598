#pragma once

#include "ui/PanelContent.hpp"
#include "ui/PanelHost.hpp"

#include <optional>
#include <string>
#include <vector>

namespace orvel {

class LoginItem;

/// Chooses what the panel shows from the state of the host, and passes on what its user does. Of its own it keeps
/// whether the pairing code is shown, and what has been announced, so it lives as long as the panel is open. Threads:
/// the main thread.
class PanelModel {
 public:
  PanelModel(PanelHost& host, LoginItem& loginItem) : host_(host), loginItem_(loginItem) {}

  /// The panel has appeared: what may have changed while it was closed is read anew.
  void appear();

  /// What has changed since the last call, in sentences for somebody who does not see the panel; nothing at the first.
  /// Called before `content`: a code that was asked for is shown once it is there.
  std::vector<std::string> takeNews();

  /// What to show now.
  PanelContent content() const;

  /// The user pressed a button.
  void perform(PanelAction action);

  /// The user switched the start at login. Whether it came true shows in the next `content`.
  void setStartAtLogin(bool on);

  static std::string statusText(const PanelState& state);
  static PanelColor statusColor(const PanelState& state);

 private:
  PanelBlock pairingBlock(const PanelState& state) const;

  PanelHost& host_;
  LoginItem& loginItem_;
  bool showingQR_ = false;
  std::optional<std::string> replacedCode_;  // while another was asked for and is not there
  std::optional<PanelState> known_;
};

}  // namespace orvel
