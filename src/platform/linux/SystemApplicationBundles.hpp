#pragma once

#include "catalog/ApplicationBundles.hpp"

namespace orvel {

class SystemApplicationBundles final : public ApplicationBundles {
 public:
  std::vector<std::string> searchPaths() const override;
  std::string_view suffix() const override { return ".desktop"; }
  std::optional<std::vector<std::string>> list(const std::string& folder) override;
  std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) override;
};

}  // namespace orvel
