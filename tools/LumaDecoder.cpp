#include "tools/LumaDecoder.hpp"

#include <turbojpeg.h>

#include <cstddef>
#include <memory>
#include <string>

namespace orvel::phone {
namespace {

std::string text(const MirrorSize& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace

Result<LumaPicture> LumaDecoder::decode(std::string_view jpeg, MirrorSize size) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(jpeg.data());
  // A new one each time, which costs next to nothing: one that has met a damaged header trips over the next JPEG.
  const std::unique_ptr<void, int (*)(void*)> decoder(tjInitDecompress(), tjDestroy);
  const Error damaged{Error::Kind::unexpected, "a damaged JPEG"};
  MirrorSize found;
  int subsampling = 0;
  int colours = 0;
  tjDecompressHeader3(decoder.get(), bytes, jpeg.size(), &found.width, &found.height, &subsampling, &colours);
  // For what is no picture some releases of the library say 0, others -1.
  if (found.width <= 0 || found.height <= 0) return damaged;
  if (found != size) {
    return Error{Error::Kind::unexpected, "a frame of " + text(found) + " instead of " + text(size) + " pixels"};
  }
  pixels_.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
  const int failed =
      tjDecompress2(decoder.get(), bytes, jpeg.size(), pixels_.data(), size.width, 0, size.height, TJPF_GRAY, 0);
  if (failed != 0) return damaged;
  return LumaPicture{pixels_, size.width, size.height};
}

}  // namespace orvel::phone
