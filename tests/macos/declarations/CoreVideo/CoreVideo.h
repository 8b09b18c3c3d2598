#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct __CVBuffer* CVBufferRef;
typedef CVBufferRef CVImageBufferRef;
typedef CVImageBufferRef CVPixelBufferRef;

enum : OSType { kCVPixelFormatType_32BGRA = 'BGRA' };

MAC_EXTERN size_t CVPixelBufferGetWidth(CVPixelBufferRef _Nonnull pixels) MAC_SINCE(10.4);
MAC_EXTERN size_t CVPixelBufferGetHeight(CVPixelBufferRef _Nonnull pixels) MAC_SINCE(10.4);
