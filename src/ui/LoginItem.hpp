#pragma once

namespace orvel {

class LoginItemService;

/// Whether this program starts at login. Keeps no state of its own. Threads: the main thread.
class LoginItem {
 public:
  explicit LoginItem(LoginItemService& service) : service_(service) {}

  /// Whether it does now.
  bool isEnabled() const;

  /// Has it start at login, or no longer. True when the change was made; otherwise everything is as it was.
  bool set(bool on);

 private:
  LoginItemService& service_;
};

}  // namespace orvel
