#include "platform/macos/events/UserActivity.hpp"

#include <IOKit/pwr_mgt/IOPMLib.h>

namespace orvel {
namespace {

/// Less than any setting for the sleep of a display, so that it stays awake while a phone is used.
constexpr Seconds interval{5};

}  // namespace

void UserActivity::declare() {
  const auto due = takeDue();
  if (!due) return;
  IOPMAssertionID assertion = *due;
  // Who holds the phone looks at this display. A remote user would leave it dark.
  if (IOPMAssertionDeclareUserActivity(CFSTR("Orvel: input from a phone"), kIOPMUserActiveLocal, &assertion) != 0)
    return;
  state_.withLock([assertion](State& state) { state.assertion = assertion; });
}

std::optional<std::uint32_t> UserActivity::takeDue() {
  const Seconds now = clock_.now();
  return state_.withLock([now](State& state) -> std::optional<std::uint32_t> {
    if (state.declaredAt && now - *state.declaredAt < interval) return std::nullopt;
    state.declaredAt = now;
    return state.assertion;
  });
}

}  // namespace orvel
