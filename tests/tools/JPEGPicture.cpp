#include "tools/JPEGPicture.hpp"

#include <turbojpeg.h>

#include <memory>
#include <stdexcept>

namespace orvel::phone {

std::string jpegOf(const Picture& picture, int quality) {
  std::vector<std::uint8_t> colours;
  for (const std::uint8_t brightness : picture.pixels) colours.insert(colours.end(), 3, brightness);
  unsigned char* jpeg = nullptr;
  unsigned long size = 0;
  const tjhandle encoder = tjInitCompress();
  const int failed = tjCompress2(encoder, colours.data(), picture.width, 0, picture.height, TJPF_RGB, &jpeg, &size,
                                 TJSAMP_420, quality, 0);
  const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owner(jpeg, tjFree);
  tjDestroy(encoder);
  if (failed != 0) throw std::runtime_error("no JPEG");
  return {reinterpret_cast<const char*>(jpeg), size};
}

}  // namespace orvel::phone
