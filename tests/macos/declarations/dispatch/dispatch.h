#pragma once

#include "Annotations.h"

#include <stddef.h>
#include <stdint.h>

#pragma clang assume_nonnull begin

@class NSObject;
@protocol NSObject;
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
@protocol OS_dispatch_queue_attr <NSObject>
@end
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;
@protocol OS_dispatch_semaphore <NSObject>
@end
typedef NSObject<OS_dispatch_semaphore>* dispatch_semaphore_t;
typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef unsigned int dispatch_qos_class_t;
enum : unsigned int { QOS_CLASS_USER_INTERACTIVE = 0x21, QOS_CLASS_USER_INITIATED = 0x19, QOS_CLASS_DEFAULT = 0x15 };

#define NSEC_PER_SEC 1000000000ULL
#define DISPATCH_TIME_NOW 0ULL
#define DISPATCH_QUEUE_SERIAL NULL

MAC_EXTERN dispatch_queue_t dispatch_queue_create(const char* _Nullable label,
                                                  dispatch_queue_attr_t _Nullable attributes)
    __attribute__((ns_returns_retained)) MAC_SINCE(10.6);
MAC_EXTERN dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t _Nullable attributes,
                                                                         dispatch_qos_class_t qos, int relativePriority)
    MAC_SINCE(10.10);
MAC_EXTERN dispatch_queue_t dispatch_get_main_queue(void);
MAC_EXTERN dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags) MAC_SINCE(10.6);
MAC_EXTERN void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) MAC_SINCE(10.6);
MAC_EXTERN void dispatch_sync(dispatch_queue_t queue, __attribute__((noescape)) dispatch_block_t block) MAC_SINCE(10.6);
MAC_EXTERN dispatch_time_t dispatch_time(dispatch_time_t when, int64_t nanoseconds) MAC_SINCE(10.6);
MAC_EXTERN void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) MAC_SINCE(10.6);
MAC_EXTERN dispatch_semaphore_t dispatch_semaphore_create(intptr_t value) __attribute__((ns_returns_retained))
MAC_SINCE(10.6);
MAC_EXTERN intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore) MAC_SINCE(10.6);
/// Zero when it was signalled, another number when the time is over.
MAC_EXTERN intptr_t dispatch_semaphore_wait(dispatch_semaphore_t semaphore, dispatch_time_t timeout) MAC_SINCE(10.6);

#pragma clang assume_nonnull end
