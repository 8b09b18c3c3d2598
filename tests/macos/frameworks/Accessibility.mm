#include "frameworks/Accessibility.hpp"

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

#include <cstdlib>

/// What an AXUIElementRef points to.
@interface AccessibilityObject : NSObject {
 @public
  bool isEverything_;
}
@end
@implementation AccessibilityObject
@end

/// What an AXValueRef points to.
@interface AccessibilityValue : NSObject {
 @public
  std::variant<CGPoint, CGSize> value_;
}
@end
@implementation AccessibilityValue
@end

namespace {

bool isEverything(AXUIElementRef element) {
  if (element == nullptr) std::abort();
  AccessibilityObject* object = (__bridge id)element;
  if (![object isKindOfClass:AccessibilityObject.class]) std::abort();
  return object->isEverything_;
}

AXUIElementRef makeElement(bool standsForAll) {
  AccessibilityObject* made = [[AccessibilityObject alloc] init];
  made->isEverything_ = standsForAll;
  return (__bridge_retained AXUIElementRef)made;
}

template <class Value>
CFTypeRef makeValue(const Value& value) {
  AccessibilityValue* made = [[AccessibilityValue alloc] init];
  made->value_ = value;
  return (__bridge_retained CFTypeRef)made;
}

template <class Value>
Boolean get(AccessibilityValue* from, void* into) {
  const auto* found = std::get_if<Value>(&from->value_);
  if (found == nullptr) return false;
  *static_cast<Value*>(into) = *found;
  return true;
}

}  // namespace

fake::Accessibility& fake::accessibility() {
  static Accessibility state;
  return state;
}

extern "C" {

AXUIElementRef AXUIElementCreateSystemWide() {
  return makeElement(true);
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float seconds) {
  if (isEverything(element)) fake::accessibility().timeouts.push_back(seconds);
  return kAXErrorSuccess;
}

AXError AXUIElementCopyElementAtPosition(AXUIElementRef application, float x, float y, AXUIElementRef* element) {
  auto& state = fake::accessibility();
  if (!isEverything(application)) return kAXErrorIllegalArgument;
  if (!NSThread.isMainThread) state.isAskedElsewhere = true;
  state.searches.emplace_back(x, y);
  if (state.searchFailure) return *state.searchFailure;
  if (!state.isNothingThere) *element = makeElement(false);
  return kAXErrorSuccess;
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
  auto& state = fake::accessibility();
  if (isEverything(element)) return kAXErrorAttributeUnsupported;
  if (!NSThread.isMainThread) state.isAskedElsewhere = true;
  const std::string name = ((__bridge NSString*)attribute).UTF8String;
  state.questions.push_back(name);
  const auto found = state.attributes.find(name);
  if (found == state.attributes.end()) return kAXErrorNoValue;
  if (const auto* error = std::get_if<AXError>(&found->second)) return *error;
  if (const auto* text = std::get_if<std::string>(&found->second)) {
    @autoreleasepool {
      *value = (__bridge_retained CFTypeRef)objectivec::text(*text);
    }
  } else if (const auto* point = std::get_if<CGPoint>(&found->second)) {
    *value = makeValue(*point);
  } else {
    *value = makeValue(std::get<CGSize>(found->second));
  }
  return kAXErrorSuccess;
}

CFTypeID AXValueGetTypeID() {
  return reinterpret_cast<CFTypeID>((__bridge void*)AccessibilityValue.class);
}

Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* into) {
  AccessibilityValue* from = (__bridge id)value;
  if (![from isKindOfClass:AccessibilityValue.class]) std::abort();
  if (type == kAXValueTypeCGPoint) return get<CGPoint>(from, into);
  return type == kAXValueTypeCGSize && get<CGSize>(from, into);
}

}  // extern "C"
