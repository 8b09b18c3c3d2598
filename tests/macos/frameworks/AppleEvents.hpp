#pragma once

#import <Foundation/Foundation.h>

/// Who handles which Apple event, in place of the application's own event loop.
namespace fake {

struct AppleEvents {
  __unsafe_unretained id handler = nil;
  SEL selector = nullptr;
  AEEventClass type = 0;
  AEEventID event = 0;
  int removed = 0;
};

/// Tests set it anew.
AppleEvents& appleEvents();

/// Sends the handler its event. False when that event has none.
bool sendAppleEvent(AEEventClass type, AEEventID event);

}  // namespace fake
