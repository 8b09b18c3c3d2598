#pragma once

#include <CoreServices/CoreServices.h>

#pragma clang assume_nonnull begin

@interface NSAppleEventDescriptor : NSObject
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
/// Does not keep the handler.
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end

#pragma clang assume_nonnull end
