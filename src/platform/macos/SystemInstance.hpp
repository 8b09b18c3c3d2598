#pragma once

#include "platform/Instance.hpp"

#include <memory>
#include <string>

namespace orvel {

class InstancePort;
class ReopenRequests;

/// Orvel by the name of a message port, which one program of a login at a time can have. Whoever opens the application
/// again by Finder or by `open` reaches the one that runs by an Apple event instead, and no second one starts.
///
/// Threads: the main thread. `showOther` waits two seconds at most.
class SystemInstance final : public Instance {
 public:
  SystemInstance();
  ~SystemInstance() override;
  SystemInstance(const SystemInstance&) = delete;
  SystemInstance& operator=(const SystemInstance&) = delete;

  bool claim(ShowPanel showPanel) override;
  bool showOther() override;
  /// Empty: a Mac lets the program itself say that it shall be active.
  const std::string& token() const override { return token_; }

 private:
  const std::string token_;
  std::unique_ptr<InstancePort> port_;
  std::unique_ptr<ReopenRequests> reopening_;
};

}  // namespace orvel
