#include "platform/macos/SystemAccessibilityTree.hpp"

#include "platform/macos/Answer.hpp"
#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

#include <array>
#include <chrono>
#include <cstddef>

namespace orvel {
namespace {

using Value = CFPointer<CFTypeRef>;

constexpr float messagingTimeout = 0.25F;  // seconds
constexpr std::chrono::milliseconds mainThreadTimeout{500};

std::optional<std::string> text(const Value& value) {
  if (!value || CFGetTypeID(value.get()) != CFStringGetTypeID()) return std::nullopt;
  return NativeText::fromCF(static_cast<CFStringRef>(value.get()));
}

/// What `value` holds, when that is of the type that `type` names.
template <class Held>
std::optional<Held> held(const Value& value, AXValueType type) {
  if (!value || CFGetTypeID(value.get()) != AXValueGetTypeID()) return std::nullopt;
  Held held{};
  if (!AXValueGetValue(static_cast<AXValueRef>(value.get()), type, &held)) return std::nullopt;
  return held;
}

std::optional<Point> point(const Value& value) {
  const auto found = held<CGPoint>(value, kAXValueTypeCGPoint);
  return found ? std::optional(Point{found->x, found->y}) : std::nullopt;
}

std::optional<Size> size(const Value& value) {
  const auto found = held<CGSize>(value, kAXValueTypeCGSize);
  return found ? std::optional(Size{found->width, found->height}) : std::nullopt;
}

std::optional<AccessibleElement> readElement(AXUIElementRef element) {
  const std::array names = {kAXRoleAttribute, kAXPositionAttribute, kAXSizeAttribute};
  std::array<Value, names.size()> values;
  for (std::size_t at = 0; at < names.size(); ++at) {
    CFTypeRef found = nullptr;
    const AXError error = AXUIElementCopyAttributeValue(element, names[at], &found);
    values[at].reset(found);
    // Its program hangs, and would keep us as long with each further question.
    if (error == kAXErrorCannotComplete) return std::nullopt;
  }
  return AccessibleElement{.role = text(values[0]), .position = point(values[1]), .size = size(values[2])};
}

std::optional<AccessibleElement> find(AXUIElementRef systemWide, Point position) {
  AXUIElementRef found = nullptr;
  const AXError error = AXUIElementCopyElementAtPosition(systemWide, static_cast<float>(position.x),
                                                         static_cast<float>(position.y), &found);
  const CFPointer<AXUIElementRef> element(found);
  if (error != kAXErrorSuccess || !element) return std::nullopt;
  return readElement(element.get());
}

}  // namespace

SystemAccessibilityTree::SystemAccessibilityTree()
    : systemWide_(CFPointer<AXUIElementRef>(AXUIElementCreateSystemWide())),
      cancellation_(std::make_shared<Cancellation>()) {
  // Holds for every element that this program asks, as the element for everything stands for them all.
  AXUIElementSetMessagingTimeout(systemWide_.get(), messagingTimeout);
}

// Other programs are asked by messages, but our own windows on the very thread that asks, and they are the main
// thread's.
std::optional<AccessibleElement> SystemAccessibilityTree::elementAt(Point position) {
  @autoreleasepool {
    if (NSThread.isMainThread) return find(systemWide_.get(), position);
    const auto answer = std::make_shared<Answer<std::optional<AccessibleElement>>>(cancellation_);
    const std::weak_ptr waiting = answer;
    const auto systemWide = systemWide_;
    dispatch_async(dispatch_get_main_queue(), ^{
      if (const auto asker = waiting.lock()) asker->give(find(systemWide.get(), position));
    });
    return answer->await(mainThreadTimeout).value_or(std::nullopt);
  }
}

}  // namespace orvel
