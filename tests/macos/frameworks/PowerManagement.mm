#include "frameworks/PowerManagement.hpp"

#import <Foundation/Foundation.h>

namespace fake {

PowerManagement& powerManagement() {
  static PowerManagement state;
  return state;
}

}  // namespace fake

extern "C" IOReturn IOPMAssertionDeclareUserActivity(CFStringRef name, IOPMUserActiveType type,
                                                     IOPMAssertionID* assertion) {
  auto& state = fake::powerManagement();
  state.activities.push_back({((__bridge NSString*)name).UTF8String, type, *assertion});
  if (state.fails) return -1;
  // Another number each time, as it may be.
  *assertion = static_cast<IOPMAssertionID>(100 + state.activities.size());
  if (type == kIOPMUserActiveLocal) state.displaySleeps = false;
  return 0;
}
