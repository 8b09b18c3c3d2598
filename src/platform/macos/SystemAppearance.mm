#include "platform/macos/SystemAppearance.hpp"

#import <AppKit/AppKit.h>

#include <utility>

namespace {

NSString* const observedKey = @"effectiveAppearance";

}  // namespace

@interface OrvelAppearanceObserver : NSObject {
 @public
  std::function<void()> changed_;
}
@end

@implementation OrvelAppearanceObserver

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  changed_();
}

@end

namespace orvel {

struct SystemAppearance::Watch {
  Watch(NSApplication* watched, std::function<void()> changed)
      : application(watched), observer([[OrvelAppearanceObserver alloc] init]) {
    observer->changed_ = std::move(changed);
    [application addObserver:observer forKeyPath:observedKey options:0 context:nullptr];
  }

  ~Watch() { [application removeObserver:observer forKeyPath:observedKey context:nullptr]; }

  NSApplication* const application;
  OrvelAppearanceObserver* const observer;
};

SystemAppearance::SystemAppearance() = default;

SystemAppearance::~SystemAppearance() = default;

std::optional<bool> SystemAppearance::isDark() const {
  NSArray<NSAppearanceName>* const known = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
  NSAppearanceName const best = [[NSApp effectiveAppearance] bestMatchFromAppearancesWithNames:known];
  if (best == nil) return std::nullopt;
  return [best isEqualToString:NSAppearanceNameDarkAqua] != NO;
}

void SystemAppearance::observe(std::function<void()> changed) {
  watch_ = std::make_unique<Watch>(NSApp, std::move(changed));
}

}  // namespace orvel
