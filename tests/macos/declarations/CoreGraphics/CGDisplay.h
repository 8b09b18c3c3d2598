#pragma once

#pragma clang assume_nonnull begin

typedef uint32_t CGDirectDisplayID;
typedef int32_t CGError;
enum : CGError { kCGErrorSuccess = 0 };

MAC_EXTERN CGDirectDisplayID CGMainDisplayID(void) MAC_SINCE(10.2);
MAC_EXTERN CGRect CGDisplayBounds(CGDirectDisplayID display) MAC_SINCE(10.0);
MAC_EXTERN CGError CGGetActiveDisplayList(uint32_t size, CGDirectDisplayID* _Nullable displays,
                                          uint32_t* _Nullable count) MAC_SINCE(10.0);

typedef uint32_t CGDisplayChangeSummaryFlags;
enum : CGDisplayChangeSummaryFlags {
  kCGDisplayBeginConfigurationFlag = 1 << 0,
  kCGDisplayMovedFlag = 1 << 1,
  kCGDisplayAddFlag = 1 << 4,
  kCGDisplayRemoveFlag = 1 << 5,
};
typedef void (*CGDisplayReconfigurationCallBack)(CGDirectDisplayID display, CGDisplayChangeSummaryFlags flags,
                                                 void* _Nullable userInfo);
MAC_EXTERN CGError CGDisplayRegisterReconfigurationCallback(CGDisplayReconfigurationCallBack _Nullable callback,
                                                            void* _Nullable userInfo) MAC_SINCE(10.3);
MAC_EXTERN CGError CGDisplayRemoveReconfigurationCallback(CGDisplayReconfigurationCallBack _Nullable callback,
                                                          void* _Nullable userInfo) MAC_SINCE(10.3);

#pragma clang assume_nonnull end
