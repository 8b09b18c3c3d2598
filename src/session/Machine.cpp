#include "session/Machine.hpp"

namespace orvel {

std::string displayName(const Machine& machine) {
  if (auto name = machine.localizedName(); name && !name->empty()) return *std::move(name);
  if (auto name = machine.hostName(); !name.empty()) return name;
  return "Computer";
}

}  // namespace orvel
