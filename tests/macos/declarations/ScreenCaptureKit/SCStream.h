#pragma once

#import "SCShareableContent.h"

#import <CoreMedia/CoreMedia.h>
#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

#pragma clang assume_nonnull begin

typedef NS_ENUM(NSInteger, SCStreamOutputType) {
  SCStreamOutputTypeScreen,
  SCStreamOutputTypeAudio MAC_SINCE(13.0),
  SCStreamOutputTypeMicrophone MAC_SINCE(15.0)
};

typedef NS_ENUM(NSInteger, SCFrameStatus) {
  SCFrameStatusComplete,
  SCFrameStatusIdle,
  SCFrameStatusBlank,
  SCFrameStatusSuspended,
  SCFrameStatusStarted,
  SCFrameStatusStopped
};

typedef NSString* SCStreamFrameInfo;
MAC_EXTERN SCStreamFrameInfo const SCStreamFrameInfoStatus MAC_SINCE(12.3);

MAC_SINCE(12.3)
@interface SCContentFilter : NSObject
- (instancetype)initWithDisplay:(SCDisplay*)display excludingWindows:(NSArray<SCWindow*>*)windows;
@end

MAC_SINCE(12.3)
@interface SCStreamConfiguration : NSObject
@property(nonatomic) size_t width;
@property(nonatomic) size_t height;
@property(nonatomic) CMTime minimumFrameInterval;
@property(nonatomic) OSType pixelFormat;
@property(nonatomic) BOOL showsCursor;
@property(nonatomic) BOOL preservesAspectRatio MAC_SINCE(14.0);
@property(nonatomic) NSInteger queueDepth;
@end

@class SCStream;

// Its method is an optional one of the system's. Here it is required, so that the compiler finds a slip in its name.
MAC_SINCE(12.3)
@protocol SCStreamOutput <NSObject>
- (void)stream:(SCStream*)stream didOutputSampleBuffer:(CMSampleBufferRef)sample ofType:(SCStreamOutputType)type;
@end

// The same holds for this one.
MAC_SINCE(12.3)
@protocol SCStreamDelegate <NSObject>
- (void)stream:(SCStream*)stream didStopWithError:(NSError*)error;
@end

MAC_SINCE(12.3)
@interface SCStream : NSObject
+ (instancetype)new __attribute__((unavailable));
- (instancetype)init __attribute__((unavailable));
- (instancetype)initWithFilter:(SCContentFilter*)filter
                 configuration:(SCStreamConfiguration*)configuration
                      delegate:(nullable id<SCStreamDelegate>)delegate;
- (BOOL)addStreamOutput:(id<SCStreamOutput>)output
                   type:(SCStreamOutputType)type
     sampleHandlerQueue:(nullable dispatch_queue_t)queue
                  error:(NSError* _Nullable* _Nullable)error;
- (void)startCaptureWithCompletionHandler:(nullable void (^)(NSError* _Nullable error))handler;
- (void)stopCaptureWithCompletionHandler:(nullable void (^)(NSError* _Nullable error))handler;
@end

#pragma clang assume_nonnull end
