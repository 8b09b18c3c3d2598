#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef UInt32 AEEventClass;
typedef UInt32 AEEventID;
enum { kCoreEventClass = 'aevt' };
enum { kAEOpenApplication = 'oapp', kAEQuitApplication = 'quit', kAEReopenApplication = 'rapp' };
