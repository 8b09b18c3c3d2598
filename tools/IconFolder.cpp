#include "tools/IconFolder.hpp"

#include "tools/WholeFile.hpp"

#include <sodium.h>

#include <algorithm>
#include <cstddef>

namespace orvel::phone {
namespace {

constexpr std::size_t longestName = 200;  // with what stands behind it, well within the 255 bytes of file systems
constexpr std::string_view pngSignature = "\x89PNG\r\n\x1a\n";

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
  return makeFolder(path_);
}

Failure IconFolder::write(const std::string& id, std::string_view png) const {
  return writeWholeFile(path_ / (id + ".png"), png);
}

}  // namespace orvel::phone
