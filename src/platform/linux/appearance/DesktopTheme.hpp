#pragma once

#include "ui/Appearance.hpp"

#include <optional>
#include <string_view>

namespace orvel {

/// Whether a theme calls itself dark, as "Adwaita-dark" does; "Darkroom" and "Arc-Darker" do not. Threads: any.
bool isDarkTheme(std::string_view name);

/// The font of a description such as "Noto Sans Bold 10.5", without its style. Nothing when that is damaged, has no
/// size in points, or one that is out of range. Threads: any.
std::optional<DesktopFont> parseFontDescription(std::string_view text);

}  // namespace orvel
