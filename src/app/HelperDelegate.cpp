#include "app/HelperDelegate.hpp"

#include "app/ServerHub.hpp"
#include "base/Executor.hpp"
#include "catalog/Workspace.hpp"
#include "input/PermissionGate.hpp"
#include "ui/Foreground.hpp"

#include <utility>

namespace orvel {

HelperDelegate::HelperDelegate(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

void HelperDelegate::applicationDidFinishLaunching() {
  dependencies_.foreground.becomeAccessory();
  dependencies_.permission.refresh();
  dependencies_.hub->start();
  dependencies_.workspace.observeActivation(
      [&permission = dependencies_.permission, &mainThread = dependencies_.mainThread] {
        mainThread.post([&permission] { permission.refresh(); });
      });
}

void HelperDelegate::applicationWillTerminate() {
  dependencies_.hub->stop();
}

}  // namespace orvel
