#pragma once

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

  /// How much room the target must have: an odd length is filled up to an even one.
  std::size_t bytesOfTarget() const;

  void average(const std::uint8_t* row, std::uint8_t* target) const;

 private:
  /// The channels of two pixels, wide enough to be summed up, or their weights.
  using PairWords [[gnu::vector_size(16)]] = std::uint16_t;

  int sourceLength_ = 0;
  std::size_t quads_ = 0;           // how many quads of the row go into each pixel
  std::vector<int> firsts_;         // the first pixel of each first quad, for an even number of targets
  std::vector<PairWords> weights_;  // those of all quads, two for each
};

}  // namespace orvel
