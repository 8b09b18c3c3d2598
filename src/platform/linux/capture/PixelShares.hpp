#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvel {

/// What of a row of pixels goes into each pixel of a row of another length, when each is to be the average of all that
/// it covers. Threads: any.
class PixelShares {
 public:
  /// The weights of neighbours; together they are `whole`.
  struct Share {
    int first = 0;  ///< The first pixel that has one.
    std::span<const std::uint16_t> weights;
  };

  static constexpr int whole = 256;

  PixelShares() = default;
  PixelShares(int sourceLength, int targetLength);

  int sourceLength() const { return sourceLength_; }

  /// The share of a pixel of the target.
  Share of(int place) const;

 private:
  struct Part {
    int first = 0;
    std::uint32_t begin = 0;  // in the list of weights, where that of the next ends it
  };

  int sourceLength_ = 0;
  std::vector<Part> parts_;
  std::vector<std::uint16_t> weights_;
};

}  // namespace orvel
