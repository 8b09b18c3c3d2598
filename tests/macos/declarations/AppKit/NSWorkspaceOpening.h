#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@end

@interface NSWorkspace (Opening)
- (BOOL)openURL:(NSURL*)url;
@end

#pragma clang assume_nonnull end
