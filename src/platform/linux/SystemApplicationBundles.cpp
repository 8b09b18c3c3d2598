#include "platform/linux/SystemApplicationBundles.hpp"

namespace orvel {

std::vector<std::string> SystemApplicationBundles::searchPaths() const {
  return {};
}

std::optional<std::vector<std::string>> SystemApplicationBundles::list(const std::string&) {
  return std::nullopt;
}

std::optional<ApplicationBundle> SystemApplicationBundles::read(const std::string&, const std::string&) {
  return std::nullopt;
}

}  // namespace orvel
