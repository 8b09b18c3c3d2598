#include "platform/linux/icons/IconThemes.hpp"

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/files/Files.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvel {
namespace {

constexpr const char* mainGroup = "Icon Theme";
constexpr int largestIconSize = 4096;
constexpr std::size_t mostNames = 2048;

std::vector<std::string> namesIn(GKeyFile* keys, const char* key) {
  gsize count = 0;
  char** list = g_key_file_get_string_list(keys, mainGroup, key, &count, nullptr);
  std::vector<std::string> names(list, list + (list == nullptr ? 0 : std::min<gsize>(count, mostNames)));
  g_strfreev(list);
  // These become parts of paths.
  std::erase_if(names, [](const std::string& name) { return name.empty() || name.find("..") != std::string::npos; });
  return names;
}

int numberIn(GKeyFile* keys, const std::string& group, const char* key, int otherwise) {
  if (!g_key_file_has_key(keys, group.c_str(), key, nullptr)) return otherwise;
  return std::clamp(g_key_file_get_integer(keys, group.c_str(), key, nullptr), 0, largestIconSize);
}

IconTheme::Type typeIn(GKeyFile* keys, const std::string& group) {
  const GLibPointer<char> text(g_key_file_get_string(keys, group.c_str(), "Type", nullptr));
  const std::string type = text ? text.get() : "";
  if (type == "Fixed") return IconTheme::Type::fixed;
  return type == "Scalable" ? IconTheme::Type::scalable : IconTheme::Type::threshold;
}

IconTheme::Folder folderIn(GKeyFile* keys, const std::string& name) {
  const int size = numberIn(keys, name, "Size", 0);
  return {.name = name,
          .size = size,
          .scale = std::max(1, numberIn(keys, name, "Scale", 1)),
          .type = typeIn(keys, name),
          .least = numberIn(keys, name, "MinSize", size),
          .greatest = numberIn(keys, name, "MaxSize", size),
          .threshold = numberIn(keys, name, "Threshold", 2)};
}

constexpr std::size_t largestIndex = std::size_t{2} << 20;
constexpr std::size_t longestName = 255;
constexpr std::size_t longestChain = 32;
constexpr std::size_t mostThemes = 256;
constexpr std::string_view commonTheme = "hicolor";
constexpr std::array<std::string_view, 3> suffixes = {".png", ".svg", ".xpm"};

std::string indexOf(const std::string& themeFolder) {
  return pathIn(themeFolder, "index.theme");
}

std::optional<std::string> iconIn(const std::string& folder, const std::string& icon,
                                  const IconThemes::Choice& choice) {
  for (const std::string_view suffix : suffixes) {
    std::string path = pathIn(folder, icon);
    path += suffix;
    if (isPlainFile(path) && choice(path)) return path;
  }
  return std::nullopt;
}

bool isFileName(const std::string& name) {
  return !name.empty() && name.size() <= longestName && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

/// Some entries name the file of an icon rather than the icon.
std::string withoutSuffix(const std::string& icon) {
  for (const std::string_view suffix : suffixes) {
    if (icon.ends_with(suffix)) return icon.substr(0, icon.size() - suffix.size());
  }
  return icon;
}

bool areSettled(const std::vector<std::optional<FileStamp>>& stamps) {
  return std::all_of(stamps.begin(), stamps.end(), [](const auto& stamp) { return !stamp || stamp->isSettled(); });
}

}  // namespace

int IconTheme::Folder::distanceTo(int pixels) const {
  const auto outside = [&](int low, int high) {
    // Icons for finer screens have coarse lines at this scale: made for another size, whatever their folder says.
    const int mismatch = scale == 1 ? 0 : 1;
    return std::max({low * scale - pixels, pixels - high * scale, mismatch});
  };
  switch (type) {
    case Type::fixed:
      return outside(size, size);
    case Type::scalable:
      return outside(least, greatest);
    case Type::threshold:
      return outside(size - threshold, size + threshold);
  }
  return largestIconSize;
}

std::optional<IconTheme> IconTheme::parse(const std::string& text) {
  const auto keys = parseKeyFile(text);
  if (!keys || !g_key_file_has_group(keys.get(), mainGroup)) return std::nullopt;
  g_key_file_set_list_separator(keys.get(), ',');
  IconTheme theme{.parents = namesIn(keys.get(), "Inherits")};
  for (const char* key : {"Directories", "ScaledDirectories"}) {
    for (const std::string& name : namesIn(keys.get(), key)) {
      if (g_key_file_has_group(keys.get(), name.c_str())) theme.folders.push_back(folderIn(keys.get(), name));
    }
  }
  return theme;
}

IconThemes::IconThemes(const DataFolders& folders) {
  if (!folders.home.empty()) bases_.push_back(folders.home + "/.icons");
  for (const std::string& folder : folders.shared) bases_.push_back(folder + "/icons");
  themeless_ = bases_;
  for (const std::string& folder : folders.shared) themeless_.push_back(folder + "/pixmaps");
}

std::optional<std::string> IconThemes::find(const std::string& icon, int pixels, const std::string& theme,
                                            const Choice& choice) {
  const std::string name = withoutSuffix(icon);
  if (!isFileName(name)) return std::nullopt;
  const auto chain = chainOf(theme);
  for (const std::string& link : chain) {
    if (auto path = findIn(link, name, pixels, choice)) return path;
  }
  for (const std::string& other : allThemes()) {
    if (std::find(chain.begin(), chain.end(), other) != chain.end()) continue;
    if (auto path = findIn(other, name, pixels, choice)) return path;
  }
  for (const std::string& folder : themeless_) {
    if (auto path = iconIn(folder, name, choice)) return path;
  }
  return std::nullopt;
}

std::vector<std::string> IconThemes::chainOf(const std::string& theme) {
  std::vector<std::string> chain;
  std::vector<std::string> waiting{theme};
  while (!waiting.empty() && chain.size() < longestChain) {
    const std::string next = std::move(waiting.back());
    waiting.pop_back();
    // The theme that all inherit comes last, and once.
    if (!isFileName(next) || next == commonTheme) continue;
    if (std::find(chain.begin(), chain.end(), next) != chain.end()) continue;
    chain.push_back(next);
    const auto known = installed(next);
    waiting.insert(waiting.end(), known->parents.rbegin(), known->parents.rend());
  }
  chain.emplace_back(commonTheme);
  return chain;
}

std::vector<std::string> IconThemes::allThemes() const {
  std::set<std::string> names;
  for (const std::string& base : bases_) {
    std::error_code error;
    for (std::filesystem::directory_iterator item(base, error), end; !error && item != end; item.increment(error)) {
      if (names.size() < mostThemes && isPlainFile(indexOf(item->path().string()))) {
        names.insert(item->path().filename().string());
      }
    }
  }
  return {names.begin(), names.end()};
}

std::shared_ptr<const IconThemes::Installed> IconThemes::installed(const std::string& theme) {
  auto known = memory_.withLock([&](const Memory& memory) -> std::shared_ptr<const Installed> {
    const auto found = memory.find(theme);
    return found == memory.end() ? nullptr : found->second;
  });
  if (known && known->stamps == stampsOf(theme)) return known;
  auto fresh = std::make_shared<const Installed>(readTheme(theme));
  if (!areSettled(fresh->stamps)) return fresh;
  memory_.withLock([&](Memory& memory) {
    if (memory.size() >= mostThemes) memory.clear();
    memory.insert_or_assign(theme, fresh);
  });
  return fresh;
}

IconThemes::Installed IconThemes::readTheme(const std::string& theme) const {
  // Before the rest: what changes meanwhile is then noticed the next time.
  Installed read{.parents = {}, .places = {}, .stamps = stampsOf(theme)};
  std::optional<IconTheme> index;
  for (const std::string& base : bases_) {
    if (const auto text = readSmallFile(indexOf(pathIn(base, theme)), largestIndex)) {
      index = IconTheme::parse(*text);
      break;
    }
  }
  if (!index) return read;
  read.parents = std::move(index->parents);
  for (const IconTheme::Folder& folder : index->folders) {
    for (const std::string& base : bases_) {
      std::string path = pathIn(pathIn(base, theme), folder.name);
      if (isFolder(path)) read.places.push_back({std::move(path), folder});
    }
  }
  return read;
}

std::vector<std::optional<FileStamp>> IconThemes::stampsOf(const std::string& theme) const {
  std::vector<std::optional<FileStamp>> stamps;
  stamps.reserve(2 * bases_.size());
  for (const std::string& base : bases_) {
    const std::string folder = pathIn(base, theme);
    stamps.push_back(FileStamp::of(folder));
    stamps.push_back(FileStamp::of(indexOf(folder)));
  }
  return stamps;
}

std::optional<std::string> IconThemes::findIn(const std::string& theme, const std::string& icon, int pixels,
                                              const Choice& choice) {
  const auto known = installed(theme);
  std::vector<const Place*> places;
  places.reserve(known->places.size());
  for (const Place& place : known->places) places.push_back(&place);
  // Of two that are as far away, the larger: drawing it smaller loses nothing.
  const auto rank = [&](const Place* place) {
    return std::pair(place->folder.distanceTo(pixels), -place->folder.size * place->folder.scale);
  };
  std::stable_sort(places.begin(), places.end(), [&](const Place* a, const Place* b) { return rank(a) < rank(b); });
  for (const Place* place : places) {
    if (auto path = iconIn(place->path, icon, choice)) return path;
  }
  return std::nullopt;
}

}  // namespace orvel
