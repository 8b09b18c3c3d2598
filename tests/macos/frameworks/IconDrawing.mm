#include "frameworks/IconDrawing.hpp"

#import <AppKit/AppKit.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>

const NSColorSpaceName NSDeviceRGBColorSpace = @"NSDeviceRGBColorSpace";

namespace {

bool fails(const char* step) {
  return fake::iconDrawing().failing.contains(step);
}

/// The context of this thread, and those that it has saved before.
struct Contexts {
  NSGraphicsContext* current = nil;
  std::vector<NSGraphicsContext*> saved;
};

/// Where threads meet that draw at once.
class Meeting {
 public:
  static Meeting& shared() {
    static Meeting meeting;
    return meeting;
  }

  /// Whether the caller is alone: the first one waits as long as `timeout` for another.
  bool isAlone(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    ++present_;
    haveMet_ = haveMet_ || present_ > 1;
    changed_.notify_all();
    changed_.wait_for(lock, timeout, [this] { return haveMet_; });
    --present_;
    return !haveMet_;
  }

  bool haveMet() {
    const std::lock_guard lock(mutex_);
    return haveMet_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int present_ = 0;
  bool haveMet_ = false;
};

Contexts& contexts() {
  static thread_local Contexts contexts;
  return contexts;
}

}  // namespace

@implementation NSColorSpace
+ (NSColorSpace*)sRGBColorSpace {
  static NSColorSpace* space = [[NSColorSpace alloc] init];
  return space;
}
@end

@implementation NSImageRep
@synthesize size = size_;
@end

@implementation NSBitmapImageRep {
 @public
  NSInteger width_;
  NSInteger height_;
  bool isPlainRGBA_;
  bool isTagged_;
}
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)alpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSColorSpaceName)colorSpaceName
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel {
  if (fails("bitmap")) return nil;
  width_ = width;
  height_ = height;
  isPlainRGBA_ = planes == nullptr && bitsPerSample == 8 && samplesPerPixel == 4 && alpha && !isPlanar &&
                 [colorSpaceName isEqualToString:NSDeviceRGBColorSpace] && bytesPerRow == 0 && bitsPerPixel == 0;
  self.size = NSSize{.width = static_cast<double>(width), .height = static_cast<double>(height)};
  return self;
}
- (NSBitmapImageRep*)bitmapImageRepByRetaggingWithColorSpace:(NSColorSpace*)space {
  if (fails("colour")) return nil;
  NSBitmapImageRep* copy = [[NSBitmapImageRep alloc] init];
  copy->width_ = width_;
  copy->height_ = height_;
  copy->isPlainRGBA_ = isPlainRGBA_;
  copy->isTagged_ = space == NSColorSpace.sRGBColorSpace;
  copy.size = self.size;
  return copy;
}
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties {
  if (fails("png") || properties.count != 0) return nil;
  fake::IconDrawing& drawing = fake::iconDrawing();
  drawing.format = type;
  return [NSData dataWithBytes:drawing.png.data() length:drawing.png.size()];
}
@end

@implementation NSGraphicsContext {
 @public
  NSBitmapImageRep* bitmap_;
}
@synthesize imageInterpolation = imageInterpolation_;
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap {
  if (fails("context")) return nil;
  NSGraphicsContext* context = [[NSGraphicsContext alloc] init];
  context->bitmap_ = bitmap;
  return context;
}
+ (NSGraphicsContext*)currentContext {
  return contexts().current;
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
  contexts().current = context;
}
+ (void)saveGraphicsState {
  contexts().saved.push_back(contexts().current);
}
+ (void)restoreGraphicsState {
  if (contexts().saved.empty()) std::abort();
  contexts().current = contexts().saved.back();
  contexts().saved.pop_back();
}
@end

@implementation NSImage
@synthesize size = size_;
- (void)drawInRect:(NSRect)place
          fromRect:(NSRect)part
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction {
  fake::IconDrawing& drawing = fake::iconDrawing();
  if (!Meeting::shared().isAlone(drawing.timeout)) return;
  NSGraphicsContext* context = NSGraphicsContext.currentContext;
  if (context == nil) std::abort();
  drawing.place = place;
  drawing.part = part;
  drawing.operation = operation;
  drawing.opacity = fraction;
  drawing.interpolation = context.imageInterpolation;
  drawing.width = context->bitmap_->width_;
  drawing.height = context->bitmap_->height_;
  drawing.size = context->bitmap_.size;
  drawing.isPlainRGBA = context->bitmap_->isPlainRGBA_;
  drawing.isTagged = context->bitmap_->isTagged_;
}
@end

namespace fake {

IconDrawing& iconDrawing() {
  static IconDrawing drawing;
  return drawing;
}

bool drawingsMet() {
  return Meeting::shared().haveMet();
}

std::size_t savedGraphicsStates() {
  return contexts().saved.size();
}

}  // namespace fake
