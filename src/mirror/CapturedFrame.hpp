#pragma once

#include "mirror/PixelBuffer.hpp"

#include <cstdint>
#include <optional>

namespace orvel {

/// One frame as the capture service hands it over. It lives until its handler returns.
///
/// Threads: the one on which it is handed over.
class CapturedFrame {
 public:
  virtual ~CapturedFrame() = default;

  /// Whether it is of the screen, and not of anything else that the service may deliver.
  virtual bool isScreen() const = 0;

  /// Whether the service says that there is something in it to be looked at.
  virtual bool isValid() const = 0;

  /// What the service says of its content: 0 is complete, others are idle, blank and the like. Nothing when the service
  /// says nothing about it that is a whole number.
  virtual std::optional<std::int64_t> status() const = 0;

  /// Its pixels, as they are on the screen now. They are fetched only here, for that costs. Null when they cannot be.
  virtual const PixelBuffer* pixels() = 0;
};

}  // namespace orvel
