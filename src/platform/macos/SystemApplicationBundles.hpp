#pragma once

#include "catalog/ApplicationBundles.hpp"

namespace orvel {

/// The application bundles on disk: those of everybody, of the system, and of the user. Names are in the user's
/// language where the bundle has them in it. Nothing is kept, so that each reading sees the disk as it is.
///
/// Threads: any.
class SystemApplicationBundles final : public ApplicationBundles {
 public:
  SystemApplicationBundles();

  std::vector<std::string> searchPaths() const override;
  std::string_view suffix() const override;
  std::optional<std::vector<std::string>> list(const std::string& folder) override;
  std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) override;

 private:
  const std::vector<std::string> searchPaths_;
};

}  // namespace orvel
