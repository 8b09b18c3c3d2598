#pragma once

#pragma clang assume_nonnull begin

@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread MAC_SINCE(10.5);
@end

#pragma clang assume_nonnull end
