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

}  // namespace orvel
