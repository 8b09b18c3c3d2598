#pragma once

namespace orvel {

/// The desktop's list of what it starts at login, as far as this program is concerned. Threads: the main thread.
class LoginItemService {
 public:
  virtual ~LoginItemService() = default;

  /// Whether the desktop starts this program at login, as its list says now.
  virtual bool isEnabled() const = 0;

  /// Enters this program. False when that fails; the list is then as it was.
  virtual bool enter() = 0;

  /// Takes this program out. False when it is not in the list, or when that fails; the list is then as it was.
  virtual bool remove() = 0;
};

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
