#pragma once

#include "CFRunLoop.h"

typedef struct __CFMessagePort* CFMessagePortRef;

enum : SInt32 {
  kCFMessagePortSuccess = 0,
  kCFMessagePortSendTimeout = -1,
  kCFMessagePortReceiveTimeout = -2,
  kCFMessagePortIsInvalid = -3,
  kCFMessagePortTransportError = -4,
};

typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void* info);
  void (*release)(const void* info);
  CFStringRef (*copyDescription)(const void* info);
} CFMessagePortContext;

/// The system releases what it returns.
typedef CFDataRef (*CFMessagePortCallBack)(CFMessagePortRef local, SInt32 message, CFDataRef data, void* info);

MAC_EXTERN CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef allocator, CFStringRef name,
                                                     CFMessagePortCallBack callout, CFMessagePortContext* context,
                                                     Boolean* shouldFreeInfo) MAC_RETURNS_RETAINED;
MAC_EXTERN CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef allocator, CFStringRef name) MAC_RETURNS_RETAINED;
MAC_EXTERN CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef allocator, CFMessagePortRef local,
                                                               CFIndex order) MAC_RETURNS_RETAINED;
MAC_EXTERN void CFMessagePortInvalidate(CFMessagePortRef port);
MAC_EXTERN SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32 message, CFDataRef data,
                                           CFTimeInterval sendTimeout, CFTimeInterval receiveTimeout,
                                           CFStringRef replyMode, CFDataRef* reply);
