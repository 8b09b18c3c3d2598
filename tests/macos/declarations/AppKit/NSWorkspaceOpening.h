#pragma once

#import "NSWorkspace.h"

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@interface NSWorkspace (Opening)
- (BOOL)openURL:(NSURL*)url;
@end

#pragma clang assume_nonnull end
