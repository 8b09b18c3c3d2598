#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreVideo/CoreVideo.h>

typedef struct {
  int64_t value;
  int32_t timescale;
  uint32_t flags;
  int64_t epoch;
} CMTime;

MAC_EXTERN CMTime CMTimeMake(int64_t value, int32_t timescale) MAC_SINCE(10.7);

typedef struct opaqueCMSampleBuffer* CMSampleBufferRef;

MAC_EXTERN Boolean CMSampleBufferIsValid(CMSampleBufferRef _Nonnull sample) MAC_SINCE(10.7);
MAC_EXTERN CVImageBufferRef _Nullable CMSampleBufferGetImageBuffer(CMSampleBufferRef _Nonnull sample)
    MAC_RETURNS_NOT_RETAINED MAC_SINCE(10.7);
MAC_EXTERN CFArrayRef _Nullable CMSampleBufferGetSampleAttachmentsArray(
    CMSampleBufferRef _Nonnull sample, Boolean createIfNecessary) MAC_RETURNS_NOT_RETAINED MAC_SINCE(10.7);
