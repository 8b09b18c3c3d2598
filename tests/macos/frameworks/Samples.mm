// Core Media's samples and Core Video's buffers, as far as the leaves look at them.

#include "frameworks/Samples.hpp"

#include "runtime/Foundation.hpp"
#include "runtime/ObjectiveC.hpp"

#import <CoreMedia/CoreMedia.h>
#import <ScreenCaptureKit/ScreenCaptureKit.h>

@interface FakePixels : NSObject {
 @public
  std::size_t width_;
  std::size_t height_;
}
@end
@implementation FakePixels
@end

@interface FakeSample : NSObject {
 @public
  bool isValid_;
  NSArray* attachments_;
  FakePixels* pixels_;
}
@end
@implementation FakeSample
@end

namespace {

FakeSample* sampleOf(CMSampleBufferRef sample) {
  return (__bridge FakeSample*)static_cast<void*>(sample);
}

FakePixels* pixelsOf(CVPixelBufferRef pixels) {
  return (__bridge FakePixels*)static_cast<void*>(pixels);
}

/// What is attached to a sample of that status.
struct Attachments {
  NSArray* operator()(int status) const {
    return @[ @{SCStreamFrameInfoStatus : @(status)} ];
  }
  NSArray* operator()(double status) const {
    return @[ @{SCStreamFrameInfoStatus : @(status)} ];
  }
  NSArray* operator()(const std::string& status) const {
    return @[ @{SCStreamFrameInfoStatus : objectivec::text(status)} ];
  }
  NSArray* operator()(fake::Sample::NoStatus) const { return @[ @{} ]; }
  NSArray* operator()(fake::Sample::NoAttachments) const { return nil; }
};

}  // namespace

extern "C" {

CMTime CMTimeMake(int64_t value, int32_t timescale) {
  return {.value = value, .timescale = timescale, .flags = 1, .epoch = 0};
}

Boolean CMSampleBufferIsValid(CMSampleBufferRef sample) {
  return sampleOf(sample)->isValid_;
}

CVImageBufferRef CMSampleBufferGetImageBuffer(CMSampleBufferRef sample) {
  return static_cast<CVImageBufferRef>((__bridge void*)sampleOf(sample)->pixels_);
}

CFArrayRef CMSampleBufferGetSampleAttachmentsArray(CMSampleBufferRef sample, Boolean createIfNecessary) {
  if (createIfNecessary && sampleOf(sample)->attachments_ == nil) sampleOf(sample)->attachments_ = @[ @{} ];
  return (__bridge CFArrayRef)sampleOf(sample)->attachments_;
}

size_t CVPixelBufferGetWidth(CVPixelBufferRef pixels) {
  return pixelsOf(pixels)->width_;
}

size_t CVPixelBufferGetHeight(CVPixelBufferRef pixels) {
  return pixelsOf(pixels)->height_;
}

}  // extern "C"

namespace fake {

id makeSample(const Sample& sample) {
  FakeSample* made = [[FakeSample alloc] init];
  made->isValid_ = sample.isValid;
  made->attachments_ = std::visit(Attachments{}, sample.status);
  if (sample.hasPixels) {
    made->pixels_ = [[FakePixels alloc] init];
    made->pixels_->width_ = sample.width;
    made->pixels_->height_ = sample.height;
  }
  return made;
}

PixelBuffer::PixelBuffer() : buffer_((__bridge_retained void*)[[FakePixels alloc] init]) {}

PixelBuffer::~PixelBuffer() {
  CFRelease(buffer_);
}

int livingSamples() {
  return objectivec::livingObjects()["FakeSample"];
}

}  // namespace fake
