#include "platform/macos/IconDrawer.hpp"

#include "platform/macos/FoundationText.hpp"

#import <AppKit/AppKit.h>

#include <cmath>

namespace orvel {
namespace {

constexpr double pixelsPerPoint = 2;
constexpr NSInteger bitsPerSample = 8;
constexpr NSInteger samplesPerPixel = 4;

/// An empty square. It measures in points, and so does what is drawn into it.
NSBitmapImageRep* makeSquare(double size) {
  const auto pixels = static_cast<NSInteger>(std::lround(size * pixelsPerPoint));
  NSBitmapImageRep* bitmap = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                                     pixelsWide:pixels
                                                                     pixelsHigh:pixels
                                                                  bitsPerSample:bitsPerSample
                                                                samplesPerPixel:samplesPerPixel
                                                                       hasAlpha:YES
                                                                       isPlanar:NO
                                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                                    bytesPerRow:0
                                                                   bitsPerPixel:0];
  // The colours of a device would be those of this computer's screen.
  NSBitmapImageRep* square = [bitmap bitmapImageRepByRetaggingWithColorSpace:NSColorSpace.sRGBColorSpace];
  square.size = NSSize{.width = size, .height = size};
  return square;
}

bool fill(NSBitmapImageRep* square, NSImage* icon) {
  NSGraphicsContext* context = [NSGraphicsContext graphicsContextWithBitmapImageRep:square];
  if (context == nil) return false;
  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext = context;
  context.imageInterpolation = NSImageInterpolationHigh;
  [icon drawInRect:NSRect{.origin = {}, .size = square.size}
          fromRect:NSRect{.origin = {}, .size = icon.size}
         operation:NSCompositingOperationCopy
          fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
  return true;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> IconDrawer::draw(const std::string& path, double size) {
  const std::lock_guard guard(drawing_);
  @autoreleasepool {
    NSString* file = FoundationText::toSystem(path);
    NSBitmapImageRep* square = makeSquare(size);
    if (file == nil || square == nil) return std::nullopt;
    if (!fill(square, [NSWorkspace.sharedWorkspace iconForFile:file])) return std::nullopt;
    NSData* png = [square representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (png == nil) return std::nullopt;
    const auto* bytes = static_cast<const std::uint8_t*>(png.bytes);
    return std::vector<std::uint8_t>(bytes, bytes + png.length);
  }
}

}  // namespace orvel
