#pragma once

#include "platform/macos/CFPointer.hpp"

#include <optional>
#include <string>
#include <string_view>

@class NSString;

/// The system's texts and ours, which are UTF-8. An NSString is a CFStringRef. Threads: any; those of Foundation inside
/// a pool.
namespace orvel::NativeText {

/// Empty for null, and where the text cannot be said in UTF-8.
std::string fromCF(CFStringRef text);

/// Null when it is not UTF-8.
CFPointer<CFStringRef> toCF(std::string_view text);

/// Nothing for nil, otherwise as `fromCF`.
std::optional<std::string> fromNS(NSString* text);

/// Nil when it is not UTF-8.
NSString* toNS(std::string_view text);

}  // namespace orvel::NativeText
