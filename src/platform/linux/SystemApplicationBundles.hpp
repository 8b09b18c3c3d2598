#pragma once

#include "catalog/ApplicationBundles.hpp"

namespace orvel {

class DesktopEntries;

/// The desktop entries of this system, each as the bundle of its program. Threads: any.
class SystemApplicationBundles final : public ApplicationBundles {
 public:
  explicit SystemApplicationBundles(DesktopEntries& entries) : entries_(entries) {}

  std::vector<std::string> searchPaths() const override;
  std::string_view suffix() const override;
  std::optional<std::vector<std::string>> list(const std::string& folder) override;
  std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) override;

 private:
  DesktopEntries& entries_;
};

}  // namespace orvel
