#include "platform/macos/SystemActivity.hpp"

#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>

namespace orvel {

struct SystemActivity::Current {
  id<NSObject> activity;
};

SystemActivity::SystemActivity() : current_(std::make_unique<Current>()) {}

SystemActivity::~SystemActivity() {
  end();
}

bool SystemActivity::begin(const std::string& reason) {
  const auto text = NativeText::toCF(reason);
  if (!text) return false;
  end();
  // Not one that is critical for latency, which costs power all the time: what must not wait comes by the network and
  // from the screen, not by timers.
  current_->activity =
      [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                   reason:(__bridge NSString*)text.get()];
  return true;
}

void SystemActivity::end() {
  if (current_->activity == nil) return;
  [NSProcessInfo.processInfo endActivity:current_->activity];
  current_->activity = nil;
}

}  // namespace orvel
