#pragma once

#include "base/Guarded.hpp"

#include <functional>

namespace orvel {

class TrustCheck;

/// Remembers whether this program may post input, so that the input path can ask for every frame.
///
/// Threads: any; `publishTo` is called once, before the first `refresh`.
class PermissionGate {
 public:
  explicit PermissionGate(TrustCheck& trust);

  /// Has `publish` called with the answer of every `refresh`, on the thread that refreshes.
  void publishTo(std::function<void(bool trusted)> publish);

  /// Asks the desktop, remembers the answer, publishes and returns it.
  bool refresh();

  /// Has the desktop ask the user and opens its settings. What is remembered changes only with the next `refresh`.
  void request();

  /// The answer of the last `refresh`; false before the first.
  bool cachedTrust() const;

 private:
  TrustCheck& trust_;
  std::function<void(bool)> publish_;
  Guarded<bool> cachedTrust_;
};

}  // namespace orvel
