#pragma once

#pragma clang assume_nonnull begin

typedef UInt32 AEEventClass;
typedef UInt32 AEEventID;
enum { kCoreEventClass = 'aevt' };
enum { kAEOpenApplication = 'oapp', kAEQuitApplication = 'quit', kAEReopenApplication = 'rapp' };

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
