#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

/// The application object.
namespace fake {

struct Application {
  NSApplicationActivationPolicy policy = NSApplicationActivationPolicyRegular;
  std::vector<std::string> activations;             ///< By which message.
  std::string appearance = "NSAppearanceNameAqua";  ///< Empty when it has none.
};

/// Tests set it anew.
Application& application();

/// Gives it another look and tells who observes it.
void changeAppearance(const std::string& name);

/// Tells that it has been launched.
void finishLaunching();

}  // namespace fake
