#include "tools/WholeFile.hpp"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

namespace orvel::phone {
namespace {

Error cannotWrite(const std::filesystem::path& path, const std::string& reason) {
  return {Error::Kind::local, "cannot write " + path.string() + ": " + reason};
}

}  // namespace

Failure makeFolder(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) return cannotWrite(path, error.message());
  return std::nullopt;
}

Failure writeWholeFile(const std::filesystem::path& path, std::string_view content) {
  const std::filesystem::path draft = path.string() + ".part";
  errno = 0;
  std::ofstream file(draft, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  std::error_code error;
  if (!file) error.assign(errno, std::generic_category());
  if (!error) std::filesystem::rename(draft, path, error);
  if (!error) return std::nullopt;
  std::error_code ignored;
  std::filesystem::remove(draft, ignored);
  return cannotWrite(path, error.message());
}

}  // namespace orvel::phone
