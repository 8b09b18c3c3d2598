#include "platform/macos/SystemMachine.hpp"

#include "platform/macos/CFPointer.hpp"
#include "platform/macos/NativeText.hpp"
#include "platform/posix/HostName.hpp"
#include "platform/posix/NetworkInterfaces.hpp"

#include <SystemConfiguration/SystemConfiguration.h>

namespace orvel {

std::optional<std::string> SystemMachine::localizedName() const {
  const CFPointer<CFStringRef> name(SCDynamicStoreCopyComputerName(nullptr, nullptr));
  std::string text = NativeText::fromCF(name.get());
  if (text.empty()) return std::nullopt;
  return text;
}

std::string SystemMachine::hostName() const {
  return HostName::read();
}

std::string SystemMachine::kind() const {
  return "Mac";
}

std::vector<NetworkInterface> SystemMachine::interfaces() const {
  return NetworkInterfaces::list();
}

}  // namespace orvel
