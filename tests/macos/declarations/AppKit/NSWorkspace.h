#pragma once

#pragma clang assume_nonnull begin

@class NSImage, NSRunningApplication;

MAC_SINCE(10.15)
@interface NSWorkspaceOpenConfiguration : NSObject <NSCopying>
@property BOOL activates;
@property BOOL createsNewApplicationInstance;
+ (instancetype)configuration;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly, copy) NSArray<NSRunningApplication*>* runningApplications MAC_SINCE(10.6);
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier MAC_SINCE(10.6);
- (NSImage*)iconForFile:(NSString*)path;
- (void)openApplicationAtURL:(NSURL*)location
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable application,
                                                NSError* _Nullable error))handler MAC_SINCE(10.15);
@end

MAC_EXTERN const NSNotificationName NSWorkspaceDidActivateApplicationNotification MAC_SINCE(10.6);
/// Where the notification has its NSRunningApplication.
MAC_EXTERN NSString* const NSWorkspaceApplicationKey MAC_SINCE(10.6);

#pragma clang assume_nonnull end
