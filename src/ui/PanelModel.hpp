#pragma once

#include "ui/PanelContent.hpp"

#include <string>

namespace orvel {

class LoginItem;
class PanelHost;
struct PanelState;

/// Chooses what the panel shows from the state of the host, and hands on what its user does. Of its own it keeps only
/// whether the pairing code is shown, so it lives as long as the panel is open. Threads: the main thread.
class PanelModel {
 public:
  PanelModel(PanelHost& host, LoginItem& loginItem) : host_(host), loginItem_(loginItem) {}

  /// The panel has appeared: what may have changed while it was closed is read anew.
  void appear();

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
};

}  // namespace orvel
