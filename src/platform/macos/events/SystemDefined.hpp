#pragma once

#include "platform/macos/CFPointer.hpp"

#include <CoreGraphics/CoreGraphics.h>

namespace orvel {

struct SystemDefinedEvent;

/// The event as the system has it; null when it cannot be made. Threads: any.
CFPointer<CGEventRef> makeSystemDefined(const SystemDefinedEvent& event);

}  // namespace orvel
