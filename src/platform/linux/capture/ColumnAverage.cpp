#include "platform/linux/capture/ColumnAverage.hpp"

#include "platform/linux/capture/PixelShares.hpp"

#include <algorithm>
#include <cstring>

namespace orvel {
namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t quad = 4;
constexpr std::size_t quadBytes = quad * channels;

/// The channels of four pixels as they are in memory.
using Bytes [[gnu::vector_size(quadBytes)]] = std::uint8_t;

/// The channels of two pixels, wide enough to be summed up, or of one.
using HalfWords [[gnu::vector_size(quadBytes)]] = std::uint16_t;
using PixelBytes [[gnu::vector_size(2 * channels)]] = std::uint8_t;

}  // namespace

ColumnAverage::ColumnAverage(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const PixelShares shares(sourceLength, targetLength);
  for (int x = 0; x < targetLength; ++x) quads_ = std::max(quads_, (shares.of(x).weights.size() + quad - 1) / quad);
  for (int x = 0; x < targetLength; ++x) {
    const PixelShares::Share share = shares.of(x);
    firsts_.push_back(share.first);
    for (std::size_t place = 0; place < quads_ * quad; place += quad) {
      Words weights = {};
      for (std::size_t i = 0; i < quadBytes; ++i) {
        const std::size_t pixel = place + i / channels;
        if (pixel < share.weights.size()) weights[i] = share.weights[pixel];
      }
      weights_.push_back(weights);
    }
  }
}

std::size_t ColumnAverage::bytesOfRow() const {
  return channels * static_cast<std::size_t>(sourceLength_) + quadBytes * quads_;
}

void ColumnAverage::average(const std::uint8_t* row, std::uint8_t* target) const {
  const Words* weights = weights_.data();
  for (const int first : firsts_) {
    const std::uint8_t* source = row + channels * static_cast<std::size_t>(first);
    Words sum = {};
    for (std::size_t i = 0; i < quads_; ++i, source += quadBytes) {
      Bytes pixels;
      std::memcpy(&pixels, source, sizeof pixels);
      sum += __builtin_convertvector(pixels, Words) * *weights++;
    }
    HalfWords half = __builtin_shufflevector(sum, sum, 0, 1, 2, 3, 4, 5, 6, 7) +
                     __builtin_shufflevector(sum, sum, 8, 9, 10, 11, 12, 13, 14, 15);
    half += __builtin_shufflevector(half, half, 4, 5, 6, 7, 0, 1, 2, 3) + PixelShares::whole / 2;
    const PixelBytes average = __builtin_convertvector(half / PixelShares::whole, PixelBytes);
    std::memcpy(target, &average, channels);
    target += channels;
  }
}

}  // namespace orvel
