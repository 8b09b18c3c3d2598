#include "platform/macos/SystemMachine.hpp"

#include "platform/macos/CFPointer.hpp"
#include "platform/macos/NativeText.hpp"
#include "platform/posix/Host.hpp"

#include <SystemConfiguration/SystemConfiguration.h>

namespace orvel {

std::optional<std::string> SystemMachine::localizedName() const {
  const CFPointer<CFStringRef> name(SCDynamicStoreCopyComputerName(nullptr, nullptr));
  std::string text = NativeText::fromCF(name.get());
  if (text.empty()) return std::nullopt;
  return text;
}

std::string SystemMachine::hostName() const {
  return Host::name();
}

std::string SystemMachine::kind() const {
  return "Mac";
}

std::vector<NetworkInterface> SystemMachine::interfaces() const {
  return Host::interfaces();
}

}  // namespace orvel
