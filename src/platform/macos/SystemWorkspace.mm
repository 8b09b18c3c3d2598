#include "platform/macos/SystemWorkspace.hpp"

#include "platform/macos/NativeText.hpp"

#import <AppKit/AppKit.h>
#import <dispatch/dispatch.h>

#include <cmath>
#include <cstdint>

namespace orvel {
namespace {

/// Longer than a program takes to come to the front that the system lets.
constexpr std::int64_t activationTimeout = NSEC_PER_SEC;

RunningApplication describe(NSRunningApplication* program) {
  return {.instance = static_cast<std::uint64_t>(program.processIdentifier),
          .identifier = NativeText::fromNS(program.bundleIdentifier),
          .name = NativeText::fromNS(program.localizedName),
          .location = NativeText::fromNS(program.bundleURL.path),
          .isRegular = program.activationPolicy == NSApplicationActivationPolicyRegular};
}

/// Nil when it has ended, even if its number is that of another program by now.
NSRunningApplication* find(const RunningApplication& application) {
  const auto process = static_cast<pid_t>(application.instance);
  NSRunningApplication* program = [NSRunningApplication runningApplicationWithProcessIdentifier:process];
  const bool isSame = NativeText::fromNS(program.bundleIdentifier) == application.identifier;
  return isSame && !program.terminated ? program : nil;
}

/// Signals each time that the program with that number comes to the front.
id<NSObject> observeFront(pid_t process, dispatch_semaphore_t arrived) {
  NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
  return [center addObserverForName:NSWorkspaceDidActivateApplicationNotification
                             object:nil
                              queue:nil
                         usingBlock:^(NSNotification* notification) {
                           NSRunningApplication* program = notification.userInfo[NSWorkspaceApplicationKey];
                           if (program.processIdentifier == process) dispatch_semaphore_signal(arrived);
                         }];
}

/// Whether the program is in front when this returns. The system may agree to activate it and do nothing, as it does
/// for a program of the background that asks for it.
bool bringToFront(NSRunningApplication* program) {
  dispatch_semaphore_t arrived = dispatch_semaphore_create(0);
  // First, so that it does not come in between.
  const id<NSObject> observer = observeFront(program.processIdentifier, arrived);
  const bool isAgreed = [program activateWithOptions:NSApplicationActivateAllWindows] != NO;
  const bool isInFront =
      isAgreed &&
      (program.active || dispatch_semaphore_wait(arrived, dispatch_time(DISPATCH_TIME_NOW, activationTimeout)) == 0);
  [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
  return isInFront;
}

void openInFront(NSURL* location) {
  NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
  configuration.activates = YES;
  [NSWorkspace.sharedWorkspace openApplicationAtURL:location configuration:configuration completionHandler:nil];
}

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

id<NSObject> observe(const std::function<void()>& handler) {
  // A block that captures a reference does not keep what that refers to.
  const std::function<void()> kept = handler;
  return
      [NSWorkspace.sharedWorkspace.notificationCenter addObserverForName:NSWorkspaceDidActivateApplicationNotification
                                                                  object:nil
                                                                   queue:nil
                                                              usingBlock:^(NSNotification*) {
                                                                kept();
                                                              }];
}

}  // namespace

/// Has the handler called as long as it lives.
struct SystemWorkspace::Observation {
  explicit Observation(const std::function<void()>& handler) : token(observe(handler)) {}
  ~Observation() {
    @autoreleasepool {
      [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:token];
    }
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;

  const id<NSObject> token;
};

SystemWorkspace::SystemWorkspace() = default;

SystemWorkspace::~SystemWorkspace() = default;

void SystemWorkspace::observeActivation(std::function<void()> handler) {
  @autoreleasepool {
    observation_ = std::make_unique<Observation>(handler);
  }
}

std::optional<std::vector<RunningApplication>> SystemWorkspace::runningApplications() {
  @autoreleasepool {
    std::vector<RunningApplication> applications;
    for (NSRunningApplication* program in NSWorkspace.sharedWorkspace.runningApplications) {
      applications.push_back(describe(program));
    }
    return applications;
  }
}

std::optional<std::string> SystemWorkspace::location(const std::string& identifier) {
  @autoreleasepool {
    NSString* bundle = NativeText::toNS(identifier);
    if (bundle == nil) return std::nullopt;
    return NativeText::fromNS([NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:bundle].path);
  }
}

std::optional<std::vector<std::uint8_t>> SystemWorkspace::icon(const std::string& path, double size) {
  const std::lock_guard guard(drawing_);
  @autoreleasepool {
    NSString* file = NativeText::toNS(path);
    NSBitmapImageRep* square = makeSquare(size);
    if (file == nil || square == nil) return std::nullopt;
    if (!fill(square, [NSWorkspace.sharedWorkspace iconForFile:file])) return std::nullopt;
    NSData* png = [square representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (png == nil) return std::nullopt;
    const auto* bytes = static_cast<const std::uint8_t*>(png.bytes);
    return std::vector<std::uint8_t>(bytes, bytes + png.length);
  }
}

void SystemWorkspace::activate(const RunningApplication& application) {
  @autoreleasepool {
    NSRunningApplication* program = find(application);
    if (program == nil || bringToFront(program)) return;
    // It may have been quit meanwhile, and is not to be started anew.
    if (program.terminated) return;
    // To open what runs already is to bring it to the front, which a program of the background may always ask for.
    NSURL* location = program.bundleURL;
    if (location != nil) openInFront(location);
  }
}

void SystemWorkspace::terminate(const RunningApplication& application) {
  @autoreleasepool {
    [find(application) terminate];
  }
}

void SystemWorkspace::open(const std::string& path) {
  @autoreleasepool {
    NSString* file = NativeText::toNS(path);
    if (file != nil) openInFront([NSURL fileURLWithPath:file]);
  }
}

}  // namespace orvel
