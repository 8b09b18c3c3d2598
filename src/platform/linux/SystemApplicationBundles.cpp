#include "platform/linux/SystemApplicationBundles.hpp"

#include "platform/linux/applications/DesktopEntries.hpp"

namespace orvel {

std::vector<std::string> SystemApplicationBundles::searchPaths() const {
  return entries_.folders();
}

std::string_view SystemApplicationBundles::suffix() const {
  return DesktopEntry::suffix;
}

std::optional<std::vector<std::string>> SystemApplicationBundles::list(const std::string& folder) {
  return entries_.list(folder);
}

std::optional<ApplicationBundle> SystemApplicationBundles::read(const std::string& path, const std::string& entry) {
  const auto found = entries_.read(path);
  if (!found) return std::nullopt;
  const std::string file = entry.substr(entry.rfind('/') + 1);
  return ApplicationBundle{.identifier = DesktopEntry::identifierOf(entry),
                           .displayName = found->name,
                           .name = file.substr(0, file.size() - suffix().size()),
                           .isListed = found->isListed};
}

}  // namespace orvel
