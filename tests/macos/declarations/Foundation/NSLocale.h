#pragma once

#pragma clang assume_nonnull begin

@interface NSLocale : NSObject
@property(class, readonly, copy) NSArray<NSString*>* preferredLanguages MAC_SINCE(10.5);
@end

#pragma clang assume_nonnull end
