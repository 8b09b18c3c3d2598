#pragma once

#include "ui/PanelHost.hpp"

#include <functional>
#include <memory>

namespace orvel {

class Executor;
class Machine;
class PairingStore;
class PermissionGate;
class ServerHub;
class TrustCheck;

/// What the application is to its panel. Threads: the main thread.
class PanelService final : public PanelHost {
 public:
  struct Dependencies {
    std::shared_ptr<ServerHub> hub;
    const Machine& machine;
    Executor& mainThread;
    PairingStore& pairing;
    PermissionGate& permission;
    Executor& slowQueue;  ///< For what may take a while.
    const TrustCheck& trust;
    std::function<void()> quit;
  };

  explicit PanelService(Dependencies dependencies);

  /// Has `changed` called when a new code is there. Called once.
  void observe(std::function<void()> changed);

  PanelState state() const override;
  PairingInvitation invitation() override;
  void refreshPermission() override;
  void requestPermission() override;
  void restart() override;
  void renewCode() override;
  void quit() override;

 private:
  void codeIsRenewed();

  const Dependencies dependencies_;
  std::function<void()> changed_;
  PairingInvitation lastInvitation_;
  bool isRenewingCode_ = false;
};

}  // namespace orvel
