#pragma once

#include "mirror/JPEGEncoder.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvel {

/// Encodes by libjpeg-turbo, with half the resolution for colours. Its working memory stays for the next picture.
///
/// Threads: one at a time.
class SystemJPEGEncoder final : public JPEGEncoder {
 public:
  SystemJPEGEncoder();
  ~SystemJPEGEncoder() override;

  std::optional<SharedBytes> encode(const PixelBuffer& picture, double quality) override;

 private:
  struct Planes;
  struct CloseCompressor {
    void operator()(void* compressor) const noexcept;
  };

  bool convert(const PixelBuffer& picture, const Planes& planes);
  Planes planesFor(const PixelBuffer& picture);

  const std::unique_ptr<void, CloseCompressor> compressor_;
  std::vector<std::uint8_t> memory_;
};

}  // namespace orvel
