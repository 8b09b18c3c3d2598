#include "frameworks/Trust.hpp"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

fake::Trust& fake::trust() {
  static Trust state;
  return state;
}

extern "C" {

const CFStringRef kAXTrustedCheckOptionPrompt = CFSTR("AXTrustedCheckOptionPrompt");

Boolean AXIsProcessTrusted() {
  return fake::trust().isGranted;
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  NSDictionary* chosen = (__bridge NSDictionary*)options;
  NSNumber* prompts = chosen[(__bridge NSString*)kAXTrustedCheckOptionPrompt];
  if (prompts.boolValue && !fake::trust().isGranted) ++fake::trust().prompts;
  return fake::trust().isGranted;
}

}  // extern "C"
