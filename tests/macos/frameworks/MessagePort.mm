#include "frameworks/MessagePort.hpp"

#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>

#include <cstdlib>

@interface MessagePort : NSObject {
 @public
  std::string name_;
  CFMessagePortCallBack callout_;
  CFMessagePortContext context_;
  bool isValid_;
  bool isServed_;
}
@end

namespace {

__unsafe_unretained MessagePort* ours = nil;

}  // namespace

@implementation MessagePort
- (void)dealloc {
  if (ours == self) ours = nil;
}
@end

@interface PortSource : NSObject {
 @public
  MessagePort* port_;
}
@end
@implementation PortSource
@end

extern "C" {

const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFRunLoopRef CFRunLoopGetMain() {
  return nullptr;
}

void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  if (source == nullptr) std::abort();
  ((__bridge PortSource*)source)->port_->isServed_ = mode == kCFRunLoopCommonModes;
}

CFMessagePortRef CFMessagePortCreateLocal(CFAllocatorRef, CFStringRef name, CFMessagePortCallBack callout,
                                          CFMessagePortContext* context, Boolean* shouldFreeInfo) {
  fake::MessagePorts& ports = fake::messagePorts();
  const std::string text = orvel::NativeText::fromCF(name);
  if (ports.takenBetweenChecks) ports.takenName = text;
  if (shouldFreeInfo != nullptr) *shouldFreeInfo = ports.givesNone || ports.takenName == text;
  if (ports.givesNone || ports.takenName == text) {
    ++ports.complaints;
    return nullptr;
  }
  MessagePort* port = [[MessagePort alloc] init];
  port->name_ = text;
  port->callout_ = callout;
  port->context_ = *context;
  port->isValid_ = true;
  ours = port;
  return (__bridge_retained CFMessagePortRef)port;
}

CFMessagePortRef CFMessagePortCreateRemote(CFAllocatorRef, CFStringRef name) {
  const std::string text = orvel::NativeText::fromCF(name);
  if (fake::messagePorts().takenName != text) return nullptr;
  MessagePort* port = [[MessagePort alloc] init];
  port->name_ = text;
  return (__bridge_retained CFMessagePortRef)port;
}

CFRunLoopSourceRef CFMessagePortCreateRunLoopSource(CFAllocatorRef, CFMessagePortRef local, CFIndex) {
  if (fake::messagePorts().givesNoSource) return nullptr;
  PortSource* source = [[PortSource alloc] init];
  source->port_ = (__bridge MessagePort*)local;
  return (__bridge_retained CFRunLoopSourceRef)source;
}

void CFMessagePortInvalidate(CFMessagePortRef port) {
  ((__bridge MessagePort*)port)->isValid_ = false;
  if (ours == (__bridge MessagePort*)port) ours = nil;
}

SInt32 CFMessagePortSendRequest(CFMessagePortRef remote, SInt32, CFDataRef, CFTimeInterval sendTimeout,
                                CFTimeInterval receiveTimeout, CFStringRef replyMode, CFDataRef* reply) {
  fake::MessagePorts& ports = fake::messagePorts();
  ports.sentTo = ((__bridge MessagePort*)remote)->name_;
  ports.sendTimeout = sendTimeout;
  ports.receiveTimeout = receiveTimeout;
  ports.waitedIn = orvel::NativeText::fromCF(replyMode);
  // Without a mode nobody waits, and there is no answer.
  if (ports.answer == kCFMessagePortSuccess && ports.answersWithData && replyMode != nullptr) {
    constexpr UInt8 byte = 7;
    *reply = CFDataCreate(nullptr, &byte, 1);
  }
  return ports.answer;
}

}  // extern "C"

namespace fake {

MessagePorts& messagePorts() {
  static MessagePorts ports;
  return ports;
}

std::string servedPort() {
  return ours != nil && ours->isServed_ ? ours->name_ : "";
}

bool messageOurPort() {
  if (ours == nil || !ours->isServed_) return false;
  const CFDataRef answer = ours->callout_((__bridge CFMessagePortRef)ours, 1, nullptr, ours->context_.info);
  if (answer == nullptr) return false;
  CFRelease(answer);
  return true;
}

}  // namespace fake
