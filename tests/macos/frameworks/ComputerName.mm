#include "frameworks/ComputerName.hpp"

#include "runtime/Foundation.hpp"

#include <SystemConfiguration/SystemConfiguration.h>

#include <cstdlib>

std::optional<std::string>& fake::computerName() {
  static std::optional<std::string> name;
  return name;
}

CFStringRef SCDynamicStoreCopyComputerName(SCDynamicStoreRef store, CFStringEncoding* encoding) {
  if (store != nullptr || encoding != nullptr) std::abort();
  const auto& name = fake::computerName();
  @autoreleasepool {
    return name ? (__bridge_retained CFStringRef)objectivec::text(*name) : nullptr;
  }
}
