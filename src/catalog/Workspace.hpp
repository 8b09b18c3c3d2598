#pragma once

#include <functional>

namespace orvel {

/// The desktop's programs as its user sees them.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Calls `handler` whenever another program comes to the front, until this object goes. Called once.
  /// Threads: the handler runs on a thread of the leaf and must be quick.
  virtual void observeActivation(std::function<void()> handler) = 0;
};

}  // namespace orvel
