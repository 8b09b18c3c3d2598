#include "platform/linux/capture/ColumnAverage.hpp"

#include "platform/linux/capture/PixelShares.hpp"

#include <algorithm>
#include <cstring>

namespace orvel {
namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t pairBytes = 2 * channels;

/// The channels of two pixels as they are in memory.
using Bytes [[gnu::vector_size(pairBytes)]] = std::uint8_t;

}  // namespace

ColumnAverage::ColumnAverage(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const PixelShares shares(sourceLength, targetLength);
  for (int x = 0; x < targetLength; ++x) pairs_ = std::max(pairs_, (shares.of(x).weights.size() + 1) / 2);
  for (int x = 0; x < targetLength; ++x) {
    const PixelShares::Share share = shares.of(x);
    firsts_.push_back(share.first);
    for (std::size_t place = 0; place < 2 * pairs_; place += 2) {
      const auto weight = [&](std::size_t i) { return i < share.weights.size() ? share.weights[i] : std::uint16_t{0}; };
      const std::uint16_t one = weight(place);
      const std::uint16_t other = weight(place + 1);
      weights_.push_back(Words{one, one, one, one, other, other, other, other});
    }
  }
}

std::size_t ColumnAverage::bytesOfRow() const {
  return channels * static_cast<std::size_t>(sourceLength_) + pairBytes * pairs_;
}

void ColumnAverage::average(const std::uint8_t* row, std::uint8_t* target) const {
  constexpr std::uint16_t half = PixelShares::whole / 2;
  const Words* weights = weights_.data();
  for (const int first : firsts_) {
    const std::uint8_t* source = row + channels * static_cast<std::size_t>(first);
    Words sum = {half, half, half, half};
    for (std::size_t i = 0; i < pairs_; ++i, source += pairBytes) {
      Bytes pair;
      std::memcpy(&pair, source, sizeof pair);
      sum += __builtin_convertvector(pair, Words) * *weights++;
    }
    sum += __builtin_shufflevector(sum, sum, 4, 5, 6, 7, 0, 1, 2, 3);
    const Bytes average = __builtin_convertvector(sum / PixelShares::whole, Bytes);
    std::memcpy(target, &average, channels);
    target += channels;
  }
}

}  // namespace orvel
