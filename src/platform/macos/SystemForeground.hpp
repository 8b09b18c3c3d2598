#pragma once

#include "ui/Foreground.hpp"

namespace orvel {

/// The active application and its key window. A window of the toolkit is an NSView. Threads: the main thread.
class SystemForeground final : public Foreground {
 public:
  void becomeAccessory() override;
  void keepOutOfList(const ToolkitWindow& window) override;
  void bring(const ToolkitWindow& window, const std::string& activationToken) override;
  /// An activation may bounce: the program that was active before is made active once more, and then this one again or
  /// not at all.
  Seconds settlingTime() const override { return Seconds(0.5); }
  /// A Mac does not wait for the end of a start, and gives no token to it.
  void finishStart(const std::string&) override {}
};

}  // namespace orvel
