#include "platform/macos/SystemInstance.hpp"

#include "platform/macos/instance/InstancePort.hpp"
#include "platform/macos/instance/ReopenRequests.hpp"

#include <utility>

namespace orvel {

SystemInstance::SystemInstance() = default;

SystemInstance::~SystemInstance() = default;

bool SystemInstance::claim(ShowPanel showPanel) {
  const auto show = [showPanel = std::move(showPanel)] { showPanel({}); };
  // Looked at first, as the system complains to the terminal about a port whose name is taken.
  if (InstancePort::isTaken()) return false;
  port_ = InstancePort::open(show);
  // Another one may have been faster.
  if (!port_ && InstancePort::isTaken()) return false;
  reopening_ = std::make_unique<ReopenRequests>(show);
  return true;
}

bool SystemInstance::showOther() {
  return InstancePort::ask();
}

std::unique_ptr<Instance> openInstance() {
  return std::make_unique<SystemInstance>();
}

}  // namespace orvel
