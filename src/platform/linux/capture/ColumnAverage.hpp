#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvel {

/// Brings rows of pixels, four bytes each, to another length: each pixel becomes the average of those that it covers.
/// It does so for four pixels of the row at a time, in vectors of the processor. Threads: any.
class ColumnAverage {
 public:
  ColumnAverage() = default;
  ColumnAverage(int sourceLength, int targetLength);

  int sourceLength() const { return sourceLength_; }

  /// How much memory a row must have, with what is read behind its end and does not count.
  std::size_t bytesOfRow() const;

  /// Two rows at a time, so that the weights are fetched once for both. Both may be the same.
  using Rows = std::array<const std::uint8_t*, 2>;
  using Targets = std::array<std::uint8_t*, 2>;
  void average(const Rows& rows, const Targets& targets) const;

 private:
  /// The channels of two pixels, wide enough to be summed up, or their weights.
  using PairWords [[gnu::vector_size(16)]] = std::uint16_t;

  int sourceLength_ = 0;
  std::size_t quads_ = 0;           // how many quads of the row go into each pixel
  std::vector<int> firsts_;         // the first pixel of each first quad
  std::vector<PairWords> weights_;  // those of all quads, two for each
};

}  // namespace orvel
