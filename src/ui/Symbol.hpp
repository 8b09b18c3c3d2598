#pragma once

#include <string_view>

namespace orvel {

/// The pictures of the panel and its icon.
enum class Symbol { cursorArrow, cursorArrowRays, exclamationMarkTriangleFill, iPhone, recordCircle };

/// The name by which the system knows it, such as "cursorarrow.rays".
constexpr std::string_view systemName(Symbol symbol) {
  switch (symbol) {
    case Symbol::cursorArrow:
      return "cursorarrow";
    case Symbol::cursorArrowRays:
      return "cursorarrow.rays";
    case Symbol::exclamationMarkTriangleFill:
      return "exclamationmark.triangle.fill";
    case Symbol::iPhone:
      return "iphone";
    case Symbol::recordCircle:
      return "record.circle";
  }
  return "";
}

}  // namespace orvel
