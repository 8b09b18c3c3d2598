#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace orvel {

class X11Connection;

/// The selection whose owner hands them out.
inline constexpr std::string_view xsettingsSelection = "_XSETTINGS_S0";

/// The texts among the settings that the desktop hands to all programs by the X server. Threads: any; waits for the
/// server. Empty where nobody hands them out.
std::map<std::string, std::string> readXSettings(const X11Connection& connection);

/// The texts in the form that they are handed out in. What is damaged ends it.
std::map<std::string, std::string> parseXSettings(std::span<const std::uint8_t> bytes);

}  // namespace orvel
