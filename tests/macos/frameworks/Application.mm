#include "frameworks/Application.hpp"

#include "frameworks/KeyValueObserving.hpp"
#include "runtime/Foundation.hpp"

extern "C" {
NSAppearanceName const NSAppearanceNameAqua = @"NSAppearanceNameAqua";
NSAppearanceName const NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";
NSNotificationName const NSApplicationDidFinishLaunchingNotification = @"NSApplicationDidFinishLaunchingNotification";
__kindof NSApplication* NSApp = nil;
}

@interface NamedAppearance : NSAppearance {
 @public
  std::string name_;
}
@end

@implementation NSAppearance
- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names {
  return nil;
}
@end

@implementation NamedAppearance
- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names {
  for (NSAppearanceName name in names) {
    // The same text, but not the same object.
    if (name_ == name.UTF8String) return objectivec::text(name_);
  }
  return nil;
}
@end

@implementation NSApplication
+ (NSApplication*)sharedApplication {
  if (NSApp == nil) NSApp = [[NSApplication alloc] init];
  return NSApp;
}
- (NSAppearance*)effectiveAppearance {
  const std::string& name = fake::application().appearance;
  if (name.empty()) return nil;
  NamedAppearance* appearance = [[NamedAppearance alloc] init];
  appearance->name_ = name;
  return appearance;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
  fake::application().policy = policy;
  return YES;
}
- (void)activate {
  fake::application().activations.push_back("activate");
}
- (void)activateIgnoringOtherApps:(BOOL)ignoresOthers {
  fake::application().activations.push_back(ignoresOthers ? "activateIgnoringOtherApps" : "activate if none is");
}
@end

namespace fake {

Application& application() {
  static Application application;
  return application;
}

void changeAppearance(const std::string& name) {
  application().appearance = name;
  notifyKeyValueObservers(NSApp, "effectiveAppearance");
}

void finishLaunching() {
  objectivec::notify(NSNotificationCenter.defaultCenter, NSApplicationDidFinishLaunchingNotification, nil);
}

}  // namespace fake
