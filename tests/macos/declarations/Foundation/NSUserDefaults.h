#pragma once

#pragma clang assume_nonnull begin

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable id)objectForKey:(NSString*)name;
- (void)setObject:(nullable id)value forKey:(NSString*)name;
@end

#pragma clang assume_nonnull end
