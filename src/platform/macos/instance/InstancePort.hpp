#pragma once

#include "platform/macos/CFPointer.hpp"

#include <functional>
#include <memory>

namespace orvel {

/// The message port by Orvel's name. Threads: the main thread.
class InstancePort {
 public:
  /// The port, whose every message calls `asked` once the main loop runs, or null when the system has none to give:
  /// its name is taken, as a rule.
  static std::unique_ptr<InstancePort> open(std::function<void()> asked);

  /// Whether somebody has the port.
  static bool isTaken();

  /// Sends whoever has the port a message. False when nobody has or it does not answer within a second.
  static bool ask();

  ~InstancePort();
  InstancePort(const InstancePort&) = delete;
  InstancePort& operator=(const InstancePort&) = delete;

 private:
  explicit InstancePort(std::function<void()> asked);

  bool listen();
  static CFDataRef answer(CFMessagePortRef port, SInt32 message, CFDataRef data, void* self);

  const std::function<void()> asked_;
  CFPointer<CFMessagePortRef> port_;
};

}  // namespace orvel
