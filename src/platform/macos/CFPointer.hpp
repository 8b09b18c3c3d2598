#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace orvel {

struct CFReleaser {
  void operator()(const void* object) const { CFRelease(object); }
};

/// Owns an object of Core Foundation, or one that is counted alike, such as a CGEventRef, which a function with Create
/// or Copy in its name returned.
template <class Reference>
using CFPointer = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;

}  // namespace orvel
