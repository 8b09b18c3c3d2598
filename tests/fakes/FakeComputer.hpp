#pragma once

#include "catalog/ApplicationBundles.hpp"
#include "catalog/Workspace.hpp"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvel {

/// A computer with folders of programs, of which some run. Those that are asked to end do,
/// unless they refuse.
class FakeComputer final : public Workspace, public ApplicationBundles {
 public:
  using Icon = std::vector<std::uint8_t>;

  struct Folder {
    std::string path;
    std::vector<std::pair<std::string, std::optional<ApplicationBundle>>> entries = {};  ///< Nothing is no bundle.
    bool isReadable = true;
  };

  void observeActivation(std::function<void()> handler) override { activationHandler = std::move(handler); }
  std::optional<std::vector<RunningApplication>> runningApplications() override {
    return reportsRunning ? std::optional(running) : std::nullopt;
  }

  std::optional<std::string> location(const std::string& identifier) override {
    ++locationQueries;
    const auto found = known.find(identifier);
    return found == known.end() ? std::nullopt : std::optional(found->second);
  }

  std::optional<Icon> icon(const std::string& path, double size) override {
    iconSizes.push_back(size);
    const auto found = icons.find(path);
    return found == icons.end() ? std::nullopt : std::optional(found->second);
  }

  void activate(const RunningApplication& application) override { activated.push_back(application.instance); }

  void terminate(const RunningApplication& application) override {
    terminated.push_back(application.instance);
    if (refusing.contains(application.instance)) return;
    std::erase_if(running, [&](const auto& other) { return other.instance == application.instance; });
  }

  void open(const std::string& path) override { opened.push_back(path); }

  std::vector<std::string> searchPaths() const override {
    std::vector<std::string> paths;
    for (const Folder& folder : folders) paths.push_back(folder.path);
    return paths;
  }

  std::string_view suffix() const override { return ".app"; }

  std::optional<std::vector<std::string>> list(const std::string& path) override {
    const Folder* folder = folderAt(path);
    if (folder == nullptr || !folder->isReadable) return std::nullopt;
    std::vector<std::string> names;
    for (const auto& [name, bundle] : folder->entries) names.push_back(name);
    return names;
  }

  std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) override {
    bundlesRead.push_back(path);
    const Folder* folder = folderAt(path.substr(0, path.size() - entry.size() - 1));
    if (folder == nullptr) return std::nullopt;
    for (const auto& [name, bundle] : folder->entries) {
      if (name == entry) return bundle;
    }
    return std::nullopt;
  }

  std::function<void()> activationHandler;
  bool reportsRunning = true;
  std::vector<RunningApplication> running;
  std::vector<Folder> folders;
  std::map<std::string, std::string> known;  ///< Where the desktop finds bundles by their identifier.
  std::map<std::string, Icon> icons;         ///< By path.
  std::set<std::uint64_t> refusing;          ///< Instances that do not end when asked to.
  int locationQueries = 0;
  std::vector<double> iconSizes;
  std::vector<std::uint64_t> activated;
  std::vector<std::uint64_t> terminated;
  std::vector<std::string> opened;
  std::vector<std::string> bundlesRead;

 private:
  const Folder* folderAt(const std::string& path) const {
    const auto found =
        std::find_if(folders.begin(), folders.end(), [&](const auto& folder) { return folder.path == path; });
    return found == folders.end() ? nullptr : &*found;
  }
};

}  // namespace orvel
