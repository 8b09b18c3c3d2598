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

  void average(const std::uint8_t* row, std::uint8_t* target) const;

 private:
  /// The channels of four pixels, or their weights.
  using Words [[gnu::vector_size(32)]] = std::uint16_t;

  int sourceLength_ = 0;
  std::size_t quads_ = 0;       // how many quads of the row go into each pixel
  std::vector<int> firsts_;     // the first pixel of each first quad
  std::vector<Words> weights_;  // those of all quads
};

}  // namespace orvel
