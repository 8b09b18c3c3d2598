#include "platform/linux/files/OwnProgram.hpp"

#include "platform/linux/files/Folders.hpp"

#include <unistd.h>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace orvel {
namespace {

constexpr std::string_view replacedMark = " (deleted)";

std::string runningProgram() {
  std::error_code ignored;
  std::string path = std::filesystem::read_symlink("/proc/self/exe", ignored).string();
  const bool isReplaced = path.ends_with(replacedMark) && !std::filesystem::exists(path, ignored);
  if (isReplaced) path.resize(path.size() - replacedMark.size());
  return path;
}

/// The file of the AppImage that `program` is part of. Programs that another AppImage has started inherit what it was
/// told of itself, and are not part of it.
std::string imageOf(const std::string& program) {
  const std::string content = environmentVariable("APPDIR");
  std::string image = environmentVariable("APPIMAGE");
  const bool isItsPart = content.starts_with('/') && program.starts_with(content + "/");
  if (!isItsPart || !image.starts_with('/') || access(image.c_str(), X_OK) != 0) return {};
  return image;
}

}  // namespace

std::string ownProgram() {
  const std::string program = runningProgram();
  const std::string image = imageOf(program);
  return image.empty() ? program : image;
}

}  // namespace orvel
