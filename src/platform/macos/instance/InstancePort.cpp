#include "platform/macos/instance/InstancePort.hpp"

#include <utility>

namespace orvel {
namespace {

constexpr CFTimeInterval patience = 1;
constexpr SInt32 showPanel = 1;

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
      CFMessagePortSendRequest(other.get(), showPanel, nullptr, patience, patience, waitingMode(), &data);
  const CFPointer<CFDataRef> reply(data);
  return result == kCFMessagePortSuccess && reply != nullptr;
}

}  // namespace orvel
