#include "app/HelperDelegate.hpp"

#include "app/ServerHub.hpp"
#include "base/Executor.hpp"
#include "catalog/Workspace.hpp"
#include "input/PermissionGate.hpp"

#include <utility>

namespace orvel {

HelperDelegate::HelperDelegate(std::shared_ptr<ServerHub> hub, PermissionGate& permission, Workspace& workspace,
                               Executor& mainThread)
    : hub_(std::move(hub)), permission_(permission), workspace_(workspace), mainThread_(mainThread) {}

void HelperDelegate::applicationDidFinishLaunching() {
  permission_.refresh();
  hub_->start();
  workspace_.observeActivation([&permission = permission_, &mainThread = mainThread_] {
    mainThread.post([&permission] { permission.refresh(); });
  });
}

void HelperDelegate::applicationWillTerminate() {
  hub_->stop();
}

}  // namespace orvel
