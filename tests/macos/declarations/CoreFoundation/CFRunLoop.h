#pragma once

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

MAC_EXTERN const CFRunLoopMode kCFRunLoopDefaultMode;
MAC_EXTERN const CFRunLoopMode kCFRunLoopCommonModes;

MAC_EXTERN CFRunLoopRef CFRunLoopGetMain(void) MAC_SINCE(10.5);
MAC_EXTERN void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
