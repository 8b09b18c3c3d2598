#pragma once

#include "ui/Foreground.hpp"

namespace orvel {

/// The active application and its key window. A window of the toolkit is an NSView. Threads: the main thread.
class SystemForeground final : public Foreground {
 public:
  void becomeAccessory() override;
  void keepOutOfList(std::uintptr_t window) override;
  void bring(std::uintptr_t window, const std::string& token) override;
  /// A Mac does not wait for the end of a start, and gives no token to it.
  void finishStart(const std::string&) override {}
};

}  // namespace orvel
