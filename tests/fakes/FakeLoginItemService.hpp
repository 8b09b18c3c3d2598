#pragma once

#include "ui/LoginItem.hpp"

namespace orvel {

/// A list of what starts at login that works as the desktop's does, unless it is made to fail.
class FakeLoginItemService final : public LoginItemService {
 public:
  bool isEnabled() const override { return isEntered; }
  bool enter() override {
    if (fails) return false;
    isEntered = true;
    return true;
  }
  bool remove() override {
    if (fails || !isEntered) return false;
    isEntered = false;
    return true;
  }

  bool isEntered = false;
  bool fails = false;
};

}  // namespace orvel
