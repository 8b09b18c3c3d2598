#include "platform/macos/SystemPressWatch.hpp"

#import <AppKit/AppKit.h>

#include <utility>

namespace orvel {
namespace {

constexpr NSEventMask presses = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown;

}  // namespace

struct SystemPressWatch::Monitor {
  id handle;
  std::function<void()> pressed;
};

SystemPressWatch::SystemPressWatch() : monitor_(std::make_unique<Monitor>()) {}

SystemPressWatch::~SystemPressWatch() {
  end();
}

void SystemPressWatch::begin(std::function<void()> pressed) {
  end();
  monitor_->pressed = std::move(pressed);
  Monitor* const monitor = monitor_.get();
  monitor->handle = [NSEvent addGlobalMonitorForEventsMatchingMask:presses
                                                           handler:^(NSEvent*) {
                                                             // A copy, as what it calls may end the watch.
                                                             const auto call = monitor->pressed;
                                                             if (call) call();
                                                           }];
}

void SystemPressWatch::end() {
  if (monitor_->handle != nil) [NSEvent removeMonitor:monitor_->handle];
  monitor_->handle = nil;
  monitor_->pressed = {};
}

}  // namespace orvel
