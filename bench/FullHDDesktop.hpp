#pragma once

#include "desktop/VirtualDesktop.hpp"

#include <string>

namespace orvel::bench {

/// A private desktop as large as most screens are. Threads: as VirtualDesktop.
class FullHDDesktop : public VirtualDesktop {
 public:
  static constexpr int width = 1920;
  static constexpr int height = 1080;

  static std::string sizeText() { return std::to_string(width) + "x" + std::to_string(height); }

  /// Starts it and waits until it answers. Throws when there is no server.
  FullHDDesktop() : VirtualDesktop({"-screen", "0", sizeText() + "x24"}) {}
};

}  // namespace orvel::bench
