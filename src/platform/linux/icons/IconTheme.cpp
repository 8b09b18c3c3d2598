#include "platform/linux/icons/IconTheme.hpp"

#include "platform/linux/GLibPointer.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

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

}  // namespace orvel
