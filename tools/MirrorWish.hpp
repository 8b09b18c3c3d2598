#pragma once

#include <optional>

namespace orvel::phone {

/// How a phone would like to see the screen. What it leaves open is up to the host. Threads: as a value.
struct MirrorWish {
  std::optional<int> width{};
  std::optional<int> fps{};
  std::optional<double> quality{};
};

}  // namespace orvel::phone
