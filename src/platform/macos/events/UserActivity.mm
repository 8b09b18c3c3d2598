#include "platform/macos/events/UserActivity.hpp"

#import <IOKit/pwr_mgt/IOPMLib.h>
#import <dispatch/dispatch.h>

#include <optional>

namespace orvel {
namespace {

/// Less than any setting for the sleep of a display, so that it stays awake while a phone is used.
constexpr Seconds interval{5};

}  // namespace

void UserActivity::declare() {
  if (!takeDue()) return;
  const std::shared_ptr<Guarded<State>> state = state_;
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
    @autoreleasepool {
      renew(*state);
    }
  });
}

bool UserActivity::takeDue() {
  const Seconds now = clock_.now();
  return state_->withLock([now](State& state) {
    if (state.isRenewing || (state.declaredAt && now - *state.declaredAt < interval)) return false;
    state.declaredAt = now;
    state.isRenewing = true;
    return true;
  });
}

void UserActivity::renew(Guarded<State>& guarded) {
  IOPMAssertionID assertion = guarded.withLock([](const State& state) { return state.assertion; });
  // Who holds the phone looks at this display. A remote user would leave it dark.
  const bool isTaken =
      IOPMAssertionDeclareUserActivity(CFSTR("Orvel: input from a phone"), kIOPMUserActiveLocal, &assertion) == 0;
  guarded.withLock([=](State& state) {
    if (isTaken) state.assertion = assertion;
    state.isRenewing = false;
  });
}

}  // namespace orvel
