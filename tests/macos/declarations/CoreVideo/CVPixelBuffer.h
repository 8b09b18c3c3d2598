// Pictures that are made here, as tests on a Mac do.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreVideo/CoreVideo.h>

typedef int32_t CVReturn;
typedef uint64_t CVPixelBufferLockFlags;
enum : CVReturn { kCVReturnSuccess = 0 };

MAC_EXTERN CVReturn CVPixelBufferCreate(CFAllocatorRef _Nullable allocator, size_t width, size_t height, OSType format,
                                        CFDictionaryRef _Nullable attributes, CVPixelBufferRef _Nullable* _Nonnull made)
    MAC_SINCE(10.4);
MAC_EXTERN CVReturn CVPixelBufferLockBaseAddress(CVPixelBufferRef _Nonnull pixels, CVPixelBufferLockFlags options)
    MAC_SINCE(10.4);
MAC_EXTERN CVReturn CVPixelBufferUnlockBaseAddress(CVPixelBufferRef _Nonnull pixels, CVPixelBufferLockFlags options)
    MAC_SINCE(10.4);
MAC_EXTERN void* _Nullable CVPixelBufferGetBaseAddress(CVPixelBufferRef _Nonnull pixels) MAC_SINCE(10.4);
MAC_EXTERN size_t CVPixelBufferGetBytesPerRow(CVPixelBufferRef _Nonnull pixels) MAC_SINCE(10.4);
