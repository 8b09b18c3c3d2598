#pragma once

#include "desktop/TemporaryFolder.hpp"

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// Data folders of a test's own: the user's, and two of the system.
class EntryFolders {
 public:
  std::vector<std::string> dataFolders() const { return {data("user"), data("local"), data("system")}; }

  std::string data(const std::string& folder) const { return (root_.path() / folder).string(); }
  std::string applications(const std::string& folder) const { return data(folder) + "/applications"; }

  /// Writes a file below a data folder, and returns its path.
  std::string write(const std::string& folder, const std::string& name, const std::string& content) const {
    const std::filesystem::path path = std::filesystem::path(data(folder)) / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    return path.string();
  }

  /// Writes a desktop entry that starts `true`, with further lines.
  std::string writeEntry(const std::string& folder, const std::string& name, const std::string& lines) const {
    return write(folder, "applications/" + name, "[Desktop Entry]\nType=Application\nExec=true\n" + lines + "\n");
  }

 private:
  TemporaryFolder root_;
};

}  // namespace orvel
