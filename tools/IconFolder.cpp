#include "tools/IconFolder.hpp"

#include <sodium.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <system_error>

namespace orvel::phone {
namespace {

constexpr std::size_t longestName = 200;  // with what stands behind it, well within the 255 bytes of file systems
constexpr std::string_view pngSignature = "\x89PNG\r\n\x1a\n";

Error cannotWrite(const std::filesystem::path& path, const std::string& reason) {
  return {Error::Kind::local, "cannot write " + path.string() + ": " + reason};
}

bool isControl(char letter) {
  return (letter >= 0 && letter < ' ') || letter == '\x7f';
}

}  // namespace

bool isSafeFileName(std::string_view id) {
  return !id.empty() && id.size() <= longestName && !id.starts_with('.') && id.find("..") == std::string_view::npos &&
         id.find_first_of("/\\") == std::string_view::npos && std::ranges::none_of(id, isControl);
}

std::optional<std::string> pngIn(std::string_view base64) {
  std::string png(base64.size() / 4 * 3, '\0');
  std::size_t size = 0;
  const int failed = sodium_base642bin(reinterpret_cast<unsigned char*>(png.data()), png.size(), base64.data(),
                                       base64.size(), nullptr, &size, nullptr, sodium_base64_VARIANT_ORIGINAL);
  if (failed != 0 || !png.starts_with(pngSignature)) return std::nullopt;
  png.resize(size);
  return png;
}

Failure IconFolder::prepare() const {
  std::error_code error;
  std::filesystem::create_directories(path_, error);
  if (error) return cannotWrite(path_, error.message());
  return std::nullopt;
}

Failure IconFolder::write(const std::string& id, std::string_view png) const {
  const auto path = path_ / (id + ".png");
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(png.data(), static_cast<std::streamsize>(png.size()));
  file.close();
  if (!file) return cannotWrite(path, std::generic_category().message(errno));
  return std::nullopt;
}

}  // namespace orvel::phone
