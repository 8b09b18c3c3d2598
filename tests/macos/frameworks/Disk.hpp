#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

/// Folders and bundles on disk, in place of Foundation's file manager and Core Foundation's bundles.
namespace fake {

/// What the information dictionary of a bundle has by its keys: texts, or numbers where no text belongs.
using BundleFacts = std::map<std::string, std::variant<std::string, int>>;

struct Disk {
  std::string home = "/Users/ada";
  std::map<std::string, std::vector<std::string>> folders;  ///< The entries of those that can be read.
  std::map<std::string, BundleFacts> bundles;               ///< By path.
};

/// Tests set it anew.
Disk& disk();

}  // namespace fake
