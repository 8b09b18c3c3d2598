#pragma once

#import <AppKit/AppKit.h>

#include <cstddef>

/// The monitors of events that other programs receive.
namespace fake {

/// Notifies the monitors of an event of that kind, which is a mask of its own.
void sendToMonitors(NSEventMask kind);

std::size_t monitorCount();

/// Whether the system gives nobody a monitor.
void refuseMonitors(bool refuses);

}  // namespace fake
