#pragma once

#include "ui/LoginItem.hpp"

namespace orvel {

/// The login item of this program's bundle, which must be signed and in its place. One that its user has switched off
/// in System Settings is in the list but not enabled; to enter it again does not switch it on. Threads: the main
/// thread.
class SystemLoginItemService final : public LoginItemService {
 public:
  bool isEnabled() const override;
  bool enter() override;
  bool remove() override;
};

}  // namespace orvel
