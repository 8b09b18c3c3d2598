#pragma once

#include "platform/macos/CFPointer.hpp"

#include <string>
#include <string_view>

/// Texts of the system's and ours, which are UTF-8. An NSString is a CFStringRef. Threads: any.
namespace orvel::CFText {

/// Empty for null, and where the text cannot be said in UTF-8.
std::string fromSystem(CFStringRef text);

/// Null when it is not UTF-8.
CFPointer<CFStringRef> toSystem(std::string_view text);

}  // namespace orvel::CFText
