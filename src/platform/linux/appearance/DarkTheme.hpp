#pragma once

#include <string_view>

namespace orvel {

/// Whether a theme calls itself dark, as "Adwaita-dark" does; "Darkroom" and "Arc-Darker" do not. Threads: any.
bool isDarkTheme(std::string_view name);

}  // namespace orvel
