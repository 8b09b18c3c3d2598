#include "platform/macos/capture/DisplayContent.hpp"

#include "platform/macos/capture/DisplayStream.hpp"
#include "platform/macos/capture/FrameOffers.hpp"

#include <CoreGraphics/CoreGraphics.h>

#include <utility>

namespace orvel {
namespace {

/// Of the samples that the system may lend out at once: one that is kept, one that is looked at, and one to draw.
constexpr NSInteger queueDepth = 3;

SCStreamConfiguration* described(const CaptureConfiguration& wanted) {
  SCStreamConfiguration* configuration = [[SCStreamConfiguration alloc] init];
  configuration.width = static_cast<size_t>(wanted.width);
  configuration.height = static_cast<size_t>(wanted.height);
  configuration.minimumFrameInterval = CMTimeMake(1, wanted.framesPerSecond);
  configuration.pixelFormat = kCVPixelFormatType_32BGRA;
  configuration.showsCursor = YES;
  configuration.queueDepth = queueDepth;
  // A place in the frame is the same place on the display, whatever the shapes of both.
  if (@available(macOS 14.0, *)) configuration.preservesAspectRatio = NO;
  return configuration;
}

/// The system promises no order, and the first display is the one that is captured.
NSArray<SCDisplay*>* mainDisplayFirst(NSArray<SCDisplay*>* displays) {
  const CGDirectDisplayID main = CGMainDisplayID();
  NSMutableArray<SCDisplay*>* ordered = [NSMutableArray arrayWithCapacity:displays.count];
  for (SCDisplay* each in displays) {
    if (each.displayID == main) [ordered addObject:each];
  }
  for (SCDisplay* each in displays) {
    if (each.displayID != main) [ordered addObject:each];
  }
  return ordered;
}

}  // namespace

DisplayContent::DisplayContent(SCShareableContent* content, std::shared_ptr<Patience> patience)
    : displays_(mainDisplayFirst(content.displays)), patience_(std::move(patience)) {}

std::vector<Size> DisplayContent::displays() const {
  @autoreleasepool {
    std::vector<Size> sizes;
    for (SCDisplay* each in displays_) {
      sizes.push_back({static_cast<double>(each.width), static_cast<double>(each.height)});
    }
    return sizes;
  }
}

std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> DisplayContent::start(
    std::size_t display, const CaptureConfiguration& configuration, CaptureStream::Handlers handlers) {
  @autoreleasepool {
    SCContentFilter* filter = [[SCContentFilter alloc] initWithDisplay:displays_[display] excludingWindows:@[]];
    auto stream = std::make_unique<DisplayStream>(
        filter, described(configuration), patience_,
        std::make_shared<FrameOffers>(configuration.framesPerSecond, std::move(handlers)));
    if (auto failure = stream->begin()) return *std::move(failure);
    return stream;
  }
}

}  // namespace orvel
