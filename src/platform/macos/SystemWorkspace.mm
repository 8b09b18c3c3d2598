#include "platform/macos/SystemWorkspace.hpp"

#include "platform/macos/FoundationText.hpp"

#import <AppKit/AppKit.h>

namespace orvel {
namespace {

RunningApplication describe(NSRunningApplication* program) {
  return {.instance = static_cast<std::uint64_t>(program.processIdentifier),
          .identifier = FoundationText::fromSystem(program.bundleIdentifier),
          .name = FoundationText::fromSystem(program.localizedName),
          .location = FoundationText::fromSystem(program.bundleURL.path),
          .isRegular = program.activationPolicy == NSApplicationActivationPolicyRegular};
}

/// Nil when it has ended, even if its number is that of another program by now.
NSRunningApplication* find(const RunningApplication& application) {
  const auto process = static_cast<pid_t>(application.instance);
  NSRunningApplication* program = [NSRunningApplication runningApplicationWithProcessIdentifier:process];
  const bool isSame = FoundationText::fromSystem(program.bundleIdentifier) == application.identifier;
  return isSame && !program.terminated ? program : nil;
}

void openInFront(NSURL* location) {
  NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
  configuration.activates = YES;
  [NSWorkspace.sharedWorkspace openApplicationAtURL:location configuration:configuration completionHandler:nil];
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

std::vector<RunningApplication> SystemWorkspace::runningApplications() {
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
    NSString* bundle = FoundationText::toSystem(identifier);
    if (bundle == nil) return std::nullopt;
    return FoundationText::fromSystem([NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:bundle].path);
  }
}

std::optional<std::vector<std::uint8_t>> SystemWorkspace::icon(const std::string& path, double size) {
  return icons_.draw(path, size);
}

void SystemWorkspace::activate(const RunningApplication& application) {
  @autoreleasepool {
    NSRunningApplication* program = find(application);
    if (program == nil || [program activateWithOptions:NSApplicationActivateAllWindows]) return;
    // A program of the background may be refused that. To open what runs already is to bring it to the front.
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
    NSString* file = FoundationText::toSystem(path);
    if (file != nil) openInFront([NSURL fileURLWithPath:file]);
  }
}

}  // namespace orvel
