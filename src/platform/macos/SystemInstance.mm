#include "platform/macos/SystemInstance.hpp"

#include "platform/macos/CFPointer.hpp"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <functional>
#include <utility>

@interface OrvelReopenHandler : NSObject {
 @public
  std::function<void()> reopened_;
}
- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation OrvelReopenHandler

- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
  reopened_();
}

@end

namespace orvel {
namespace {

constexpr CFTimeInterval messageTimeout = 1;
constexpr SInt32 showMessage = 1;

CFStringRef portName() {
  return CFSTR("app.orvel.Orvel");
}

/// A mode of our own, in which nothing but the answer is waited for.
CFStringRef waitingMode() {
  return CFSTR("app.orvel.Orvel.answer");
}

CFPointer<CFMessagePortRef> findOther() {
  return CFPointer<CFMessagePortRef>(CFMessagePortCreateRemote(nullptr, portName()));
}

}  // namespace

/// The message port by Orvel's name. Threads: the main thread.
class InstancePort {
 public:
  /// The port, whose every message calls `asked` once the main loop runs, or null when the system has none to give:
  /// its name is taken, as a rule.
  static std::unique_ptr<InstancePort> open(std::function<void()> asked);

  /// Whether somebody has the port.
  static bool isTaken();

  /// Sends whoever has the port a message. False when nobody has or it does not answer within a second.
  static bool ask();

  ~InstancePort();
  InstancePort(const InstancePort&) = delete;
  InstancePort& operator=(const InstancePort&) = delete;

 private:
  explicit InstancePort(std::function<void()> asked);

  bool listen();
  static CFDataRef answer(CFMessagePortRef port, SInt32 message, CFDataRef data, void* self);

  const std::function<void()> asked_;
  CFPointer<CFMessagePortRef> port_;
};

InstancePort::InstancePort(std::function<void()> asked) : asked_(std::move(asked)) {}

InstancePort::~InstancePort() {
  // Its source may be kept by the main loop for longer, and leads here.
  if (port_) CFMessagePortInvalidate(port_.get());
}

std::unique_ptr<InstancePort> InstancePort::open(std::function<void()> asked) {
  std::unique_ptr<InstancePort> port(new InstancePort(std::move(asked)));
  if (!port->listen()) return nullptr;
  return port;
}

bool InstancePort::listen() {
  CFMessagePortContext context{
      .version = 0, .info = this, .retain = nullptr, .release = nullptr, .copyDescription = nullptr};
  // Whether to free what the context holds is not asked for, as it is not the port's in any case.
  port_.reset(CFMessagePortCreateLocal(nullptr, portName(), answer, &context, nullptr));
  if (!port_) return false;
  const CFPointer<CFRunLoopSourceRef> source(CFMessagePortCreateRunLoopSource(nullptr, port_.get(), 0));
  if (!source) return false;
  // In menus and while something is dragged, too.
  CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
  return true;
}

CFDataRef InstancePort::answer(CFMessagePortRef, SInt32, CFDataRef, void* self) {
  static_cast<const InstancePort*>(self)->asked_();
  constexpr UInt8 done = 1;
  return CFDataCreate(nullptr, &done, 1);
}

bool InstancePort::isTaken() {
  return findOther() != nullptr;
}

bool InstancePort::ask() {
  const auto other = findOther();
  if (!other) return false;
  CFDataRef data = nullptr;
  const SInt32 result =
      CFMessagePortSendRequest(other.get(), showMessage, nullptr, messageTimeout, messageTimeout, waitingMode(), &data);
  const CFPointer<CFDataRef> reply(data);
  return result == kCFMessagePortSuccess && reply != nullptr;
}

/// The Apple event by which Finder and `open` have an application that runs show itself. Threads: the main thread.
class ReopenRequests {
 public:
  /// Calls `reopened` for each, once the application has been launched.
  explicit ReopenRequests(std::function<void()> reopened);
  ~ReopenRequests();
  ReopenRequests(const ReopenRequests&) = delete;
  ReopenRequests& operator=(const ReopenRequests&) = delete;

 private:
  void listen();

  OrvelReopenHandler* const handler_;
  id<NSObject> launch_;
  bool hasBegun_ = false;
};

ReopenRequests::ReopenRequests(std::function<void()> reopened) : handler_([[OrvelReopenHandler alloc] init]) {
  handler_->reopened_ = std::move(reopened);
  // The application puts handlers of its own in place when it is launched, so ours comes after.
  launch_ = [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationDidFinishLaunchingNotification
                                                            object:nil
                                                             queue:nil
                                                        usingBlock:^(NSNotification*) {
                                                          listen();
                                                        }];
}

ReopenRequests::~ReopenRequests() {
  [NSNotificationCenter.defaultCenter removeObserver:launch_];
  if (!hasBegun_) return;
  [NSAppleEventManager.sharedAppleEventManager removeEventHandlerForEventClass:kCoreEventClass
                                                                    andEventID:kAEReopenApplication];
}

void ReopenRequests::listen() {
  hasBegun_ = true;
  [NSAppleEventManager.sharedAppleEventManager setEventHandler:handler_
                                                   andSelector:@selector(handleEvent:withReplyEvent:)
                                                 forEventClass:kCoreEventClass
                                                    andEventID:kAEReopenApplication];
}

SystemInstance::SystemInstance() = default;

SystemInstance::~SystemInstance() = default;

bool SystemInstance::claim(ShowPanel showPanel) {
  const auto show = [showPanel = std::move(showPanel)] { showPanel({}); };
  // Checked first, as the system writes a complaint to the terminal when the name of a port is taken.
  if (InstancePort::isTaken()) return false;
  port_ = InstancePort::open(show);
  // Another instance may have been faster.
  if (!port_ && InstancePort::isTaken()) return false;
  reopening_ = std::make_unique<ReopenRequests>(show);
  return true;
}

bool SystemInstance::showOther() {
  return InstancePort::ask();
}

std::unique_ptr<Instance> openInstance() {
  return std::make_unique<SystemInstance>();
}

}  // namespace orvel
