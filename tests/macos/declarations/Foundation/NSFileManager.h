#pragma once

#pragma clang assume_nonnull begin

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (nullable NSArray<NSString*>*)contentsOfDirectoryAtPath:(NSString*)path
                                                    error:(NSError* _Nullable* _Nullable)error MAC_SINCE(10.5);
@end

#pragma clang assume_nonnull end
