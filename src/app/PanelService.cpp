#include "app/PanelService.hpp"

#include "app/ServerHub.hpp"
#include "base/Executor.hpp"
#include "input/PermissionGate.hpp"
#include "input/TrustCheck.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <utility>

namespace orvel {

PanelService::PanelService(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

void PanelService::observe(std::function<void()> changed) {
  changed_ = std::move(changed);
}

PanelState PanelService::state() const {
  const HubState& hub = dependencies_.hub->state();
  return {.isRunning = hub.isRunning,
          .accessibilityGranted = hub.accessibilityGranted,
          .clients = hub.clients,
          .lastError = hub.lastError,
          .mirroring = hub.mirroring,
          .port = dependencies_.hub->port(),
          .address = NetworkInfo::localAddress(dependencies_.machine),
          .permission = dependencies_.trust.notice()};
}

PairingInvitation PanelService::invitation() {
  // While the code is being replaced, whoever reads it waits until that is done; the panel must not.
  if (!isRenewingCode_) {
    lastInvitation_ = {.payload = dependencies_.hub->pairingPayload(),
                       .displayCode = dependencies_.pairing.displayToken()};
  }
  return lastInvitation_;
}

void PanelService::refreshPermission() {
  dependencies_.permission.refresh();
}

void PanelService::requestPermission() {
  dependencies_.permission.request();
}

void PanelService::restart() {
  dependencies_.hub->start();
}

void PanelService::renewCode() {
  if (isRenewingCode_) return;
  lastInvitation_ = invitation();
  isRenewingCode_ = true;
  dependencies_.slowQueue.post([this] {
    dependencies_.pairing.rotateToken();
    dependencies_.hub->disconnectAll();
    dependencies_.mainThread.post([this] { codeIsRenewed(); });
  });
}

void PanelService::codeIsRenewed() {
  isRenewingCode_ = false;
  if (changed_) changed_();
}

void PanelService::quit() {
  dependencies_.quit();
}

}  // namespace orvel
