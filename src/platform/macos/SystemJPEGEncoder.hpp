#pragma once

#include "mirror/JPEGEncoder.hpp"

#include <memory>
#include <optional>

namespace orvel {

/// Encodes the system's own pictures by Core Image, without any management of colours. It cannot read others.
///
/// Threads: one at a time.
class SystemJPEGEncoder final : public JPEGEncoder {
 public:
  SystemJPEGEncoder();
  ~SystemJPEGEncoder() override;
  SystemJPEGEncoder(const SystemJPEGEncoder&) = delete;
  SystemJPEGEncoder& operator=(const SystemJPEGEncoder&) = delete;

  std::optional<SharedBytes> encode(const PixelBuffer& picture, double quality) override;

 private:
  struct Renderer;

  const std::unique_ptr<const Renderer> renderer_;
};

}  // namespace orvel
