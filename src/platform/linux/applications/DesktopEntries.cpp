#include "platform/linux/applications/DesktopEntries.hpp"

#include "base/UTF8.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/files/Files.hpp"

#include <dirent.h>
#include <gio/gdesktopappinfo.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <unordered_set>
#include <utility>

namespace orvel {
namespace {

std::string textOf(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

std::string stringIn(GKeyFile* keys, const char* key) {
  const GLibPointer<char> value(g_key_file_get_locale_string(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr));
  return textOf(value.get());
}

std::string fileNameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

constexpr std::size_t largestEntry = std::size_t{1} << 20;
constexpr std::size_t mostEntries = 20'000;
constexpr std::size_t longestIdentifier = 1024;
constexpr std::size_t mostFolders = 1000;
constexpr int deepestFolder = 4;

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

bool isSelfOrParent(std::string_view name) {
  return name == "." || name == "..";
}

bool isFileStem(std::string_view identifier) {
  return !identifier.empty() && identifier.size() <= longestIdentifier && isValidUTF8(identifier) &&
         identifier.find('/') == std::string_view::npos && identifier.find('\0') == std::string_view::npos;
}

/// Collects the names of entries below one folder.
class FolderWalk {
 public:
  explicit FolderWalk(const std::string& root) : root_(root) {}

  /// False when the folder itself cannot be read.
  bool enter(const std::string& prefix, int depth) {
    const std::string path = root_ + "/" + prefix;
    struct stat status {};
    if (visited_.size() == mostFolders || stat(path.c_str(), &status) != 0) return false;
    // A link may lead back up.
    if (!visited_.emplace(status.st_dev, status.st_ino).second) return false;
    const Folder folder(opendir(path.c_str()));
    if (!folder) return false;
    while (const dirent* item = readdir(folder.get())) {
      if (names_.size() == mostEntries) break;
      take(prefix + item->d_name, item->d_type, depth);
    }
    return true;
  }

  std::vector<std::string> names() && { return std::move(names_); }

 private:
  void take(const std::string& name, unsigned char type, int depth) {
    const std::string_view last = std::string_view(name).substr(name.rfind('/') + 1);
    if (isSelfOrParent(last)) return;
    if (last.ends_with(DesktopEntry::suffix) && type != DT_DIR) {
      if (last != DesktopEntry::suffix && isValidUTF8(name)) names_.push_back(name);
    } else if ((type == DT_DIR || type == DT_LNK || type == DT_UNKNOWN) && depth < deepestFolder) {
      enter(name + "/", depth + 1);
    }
  }

  const std::string& root_;
  std::set<std::pair<dev_t, ino_t>> visited_;
  std::vector<std::string> names_;
};

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(const std::string& text) {
  const auto keys = parseKeyFile(text);
  if (!keys || stringIn(keys.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
    return std::nullopt;
  }
  DesktopEntry entry;
  if (g_key_file_has_key(keys.get(), G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr)) {
    const GLibPointer<char> name(g_key_file_get_locale_string(keys.get(), G_KEY_FILE_DESKTOP_GROUP,
                                                              G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    if (!name) return std::nullopt;  // no UTF-8
    entry.name = name.get();
  }
  const GLibPointer<GDesktopAppInfo> info(g_desktop_app_info_new_from_keyfile(keys.get()));
  // It takes no entry whose program is missing.
  if (!info) return entry;
  entry.isUsable = !g_desktop_app_info_get_is_hidden(info.get());
  entry.isListed = entry.isUsable && g_app_info_should_show(G_APP_INFO(info.get()));
  entry.icon = stringIn(keys.get(), G_KEY_FILE_DESKTOP_KEY_ICON);
  entry.windowClass = textOf(g_desktop_app_info_get_startup_wm_class(info.get()));
  entry.program = fileNameOf(textOf(g_app_info_get_executable(G_APP_INFO(info.get()))));
  entry.runsInTerminal = g_desktop_app_info_get_boolean(info.get(), G_KEY_FILE_DESKTOP_KEY_TERMINAL);
  return entry;
}

std::string DesktopEntry::identifierOf(std::string_view fileName) {
  std::string identifier(fileName.substr(0, fileName.size() - suffix.size()));
  std::replace(identifier.begin(), identifier.end(), '/', '-');
  return identifier;
}

DesktopEntries::DesktopEntries(const std::vector<std::string>& dataFolders) {
  folders_.reserve(dataFolders.size());
  for (const std::string& folder : dataFolders) folders_.push_back(folder + "/applications");
}

std::optional<std::vector<std::string>> DesktopEntries::list(const std::string& folder) {
  FolderWalk walk(folder);
  if (!walk.enter("", 0)) return std::nullopt;
  auto names = std::move(walk).names();
  forgetAllBut(folder, names);
  return names;
}

void DesktopEntries::forgetAllBut(const std::string& folder, const std::vector<std::string>& names) {
  const std::unordered_set<std::string_view> present(names.begin(), names.end());
  memory_.withLock([&](Memory& memory) {
    std::erase_if(memory, [&](const auto& remembered) {
      const std::string_view path = remembered.first;
      return path.starts_with(folder + "/") && !present.contains(path.substr(folder.size() + 1));
    });
  });
}

std::shared_ptr<const DesktopEntry> DesktopEntries::read(const std::string& path) {
  const auto stamp = FileStamp::of(path);
  if (!stamp || !stamp->isPlainFile) return nullptr;
  const auto remembered = memory_.withLock([&](const Memory& memory) {
    const auto found = memory.find(path);
    return found == memory.end() ? std::nullopt : std::optional(found->second);
  });
  if (remembered && remembered->stamp == *stamp) return remembered->entry;

  const auto text = readSmallFile(path, largestEntry);
  auto parsed = text ? DesktopEntry::parse(*text) : std::nullopt;
  auto entry = parsed ? std::make_shared<const DesktopEntry>(std::move(*parsed)) : nullptr;
  // A missing program may come without a change of the entry.
  const bool mayChangeUnseen = !stamp->isSettled() || (entry && !entry->isUsable);
  if (mayChangeUnseen) return entry;
  memory_.withLock([&](Memory& memory) { memory.insert_or_assign(path, Remembered{*stamp, entry}); });
  return entry;
}

std::vector<DesktopEntries::Found> DesktopEntries::all() {
  std::vector<Found> entries;
  std::unordered_set<std::string> seen;
  for (const std::string& folder : folders_) {
    const auto names = list(folder);
    if (!names) continue;
    for (const std::string& name : *names) {
      std::string path = pathIn(folder, name);
      auto entry = read(path);
      std::string identifier = DesktopEntry::identifierOf(name);
      if (!entry || !seen.insert(identifier).second || !entry->isUsable) continue;
      entries.push_back({std::move(path), std::move(identifier), std::move(entry)});
    }
  }
  return entries;
}

std::optional<DesktopEntries::Found> DesktopEntries::find(std::string_view identifier) {
  if (!isFileStem(identifier)) return std::nullopt;
  for (const std::string& folder : folders_) {
    auto path = locate(folder, identifier, 0);
    auto entry = path ? read(*path) : nullptr;
    if (!entry) continue;
    if (!entry->isUsable) return std::nullopt;
    return Found{std::move(*path), std::string(identifier), std::move(entry)};
  }
  return std::nullopt;
}

std::optional<std::string> DesktopEntries::locate(const std::string& folder, std::string_view name, int depth) const {
  std::string path = folder + "/" + std::string(name) + std::string(DesktopEntry::suffix);
  if (isPlainFile(path)) return path;
  if (depth == deepestFolder) return std::nullopt;
  // Each dash may stand for the slash of a folder below.
  for (auto dash = name.find('-'); dash != std::string_view::npos; dash = name.find('-', dash + 1)) {
    const std::string_view first = name.substr(0, dash);
    const std::string inner = pathIn(folder, first);
    if (first.empty() || isSelfOrParent(first) || !isFolder(inner)) continue;
    if (auto found = locate(inner, name.substr(dash + 1), depth + 1)) return found;
  }
  return std::nullopt;
}

}  // namespace orvel
