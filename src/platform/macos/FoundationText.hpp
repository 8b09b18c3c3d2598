#pragma once

#include <optional>
#include <string>
#include <string_view>

@class NSString;

/// Texts of Foundation's, for leaves in Objective-C. Threads: any, inside a pool.
namespace orvel::FoundationText {

/// Nothing for nil.
std::optional<std::string> fromSystem(NSString* text);

/// Nil when it is not UTF-8.
NSString* toSystem(std::string_view text);

}  // namespace orvel::FoundationText
