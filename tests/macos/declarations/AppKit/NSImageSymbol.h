#pragma once

#import "NSImage.h"

#pragma clang assume_nonnull begin

// A property there, by the name of `template`; only its methods can be said in C++.
@interface NSImage (Symbol)
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description MAC_SINCE(11.0);
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@end

#pragma clang assume_nonnull end
