#include "platform/linux/Backend.hpp"

#include <algorithm>
#include <iterator>
#include <vector>

namespace orvel {

std::optional<BackendKind> chooseBackend(std::span<const BackendKind> kinds) {
  std::vector<BackendKind> present;
  std::ranges::copy_if(kinds, std::back_inserter(present), [](const BackendKind& kind) { return kind.isPresent(); });
  if (present.empty()) return std::nullopt;
  if (present.size() == 1) return present.front();
  const auto answering = std::ranges::find_if(present, [](const BackendKind& kind) { return !kind.missing(); });
  return answering == present.end() ? present.front() : *answering;
}

}  // namespace orvel
