#include "session/Machine.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvel {
namespace {

constexpr std::array<std::string_view, 4> preferredNames = {"en0", "en1", "en2", "bridge0"};
constexpr std::string_view linkLocalPrefix = "169.254";

bool isReachable(const NetworkInterface& interface) {
  return interface.isUp && !interface.isLoopback && !interface.address.starts_with(linkLocalPrefix);
}

}  // namespace

std::string displayName(const Machine& machine) {
  if (auto name = machine.localizedName(); name && !name->empty()) return *std::move(name);
  if (auto name = machine.hostName(); !name.empty()) return name;
  return "Computer";
}

std::optional<std::string> NetworkInfo::localAddress(const Machine& machine) {
  std::vector<NetworkInterface> candidates = machine.interfaces();
  std::erase_if(candidates, [](const NetworkInterface& interface) { return !isReachable(interface); });
  if (candidates.empty()) return std::nullopt;
  for (const std::string_view name : preferredNames) {
    const auto match = std::ranges::find(candidates, name, &NetworkInterface::name);
    if (match != candidates.end()) return match->address;
  }
  return candidates.front().address;
}

}  // namespace orvel
