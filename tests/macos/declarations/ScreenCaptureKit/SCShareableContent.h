#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

MAC_SINCE(12.3)
@interface SCDisplay : NSObject
@property(readonly) CGDirectDisplayID displayID;
@property(readonly) NSInteger width;
@property(readonly) NSInteger height;
+ (instancetype)new __attribute__((unavailable));
- (instancetype)init __attribute__((unavailable));
@end

MAC_SINCE(12.3)
@interface SCWindow : NSObject
+ (instancetype)new __attribute__((unavailable));
- (instancetype)init __attribute__((unavailable));
@end

MAC_SINCE(12.3)
@interface SCShareableContent : NSObject
@property(readonly) NSArray<SCDisplay*>* displays;
+ (instancetype)new __attribute__((unavailable));
- (instancetype)init __attribute__((unavailable));
+ (void)getShareableContentExcludingDesktopWindows:(BOOL)excludesDesktopWindows
                               onScreenWindowsOnly:(BOOL)onScreenWindowsOnly
                                 completionHandler:
                                     (void (^)(SCShareableContent* _Nullable content, NSError* _Nullable error))handler;
@end

#pragma clang assume_nonnull end
