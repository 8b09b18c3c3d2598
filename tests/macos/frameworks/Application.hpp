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

/// Gives it another look and notifies its observers.
void changeAppearance(const std::string& name);

/// Posts the notification that it has been launched.
void finishLaunching();

}  // namespace fake
