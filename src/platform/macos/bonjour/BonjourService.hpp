#pragma once

#include <cstdint>
#include <string>

namespace orvel {

/// What is announced: where the port of this computer leads to.
struct BonjourService {
  std::string name;
  std::string type;
  std::uint16_t port = 0;
};

}  // namespace orvel
