#include "platform/linux/capture/ColumnAverage.hpp"

#include "platform/linux/capture/PixelShares.hpp"

#include <algorithm>
#include <cstring>

namespace orvel {
namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t pairBytes = 2 * channels;
constexpr std::size_t quad = 4;

/// The channels of four pixels as they are in memory.
using QuadBytes [[gnu::vector_size(quad * channels)]] = std::uint8_t;

/// The channels of two pixels, wide enough to be summed up.
using PairWords [[gnu::vector_size(2 * pairBytes)]] = std::uint16_t;

using PairBytes [[gnu::vector_size(pairBytes)]] = std::uint8_t;

QuadBytes quadAt(const std::uint8_t* source) {
  QuadBytes pixels;
  std::memcpy(&pixels, source, sizeof pixels);
  return pixels;
}

/// What vectors of the processor know as unpacking: each byte becomes a word, the lower byte of which comes first.
PairWords firstPairOf(const QuadBytes& pixels) {
  return reinterpret_cast<PairWords>(
      __builtin_shufflevector(pixels, QuadBytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

PairWords secondPairOf(const QuadBytes& pixels) {
  return reinterpret_cast<PairWords>(
      __builtin_shufflevector(pixels, QuadBytes{}, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31));
}

}  // namespace

ColumnAverage::ColumnAverage(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const PixelShares shares(sourceLength, targetLength);
  for (int x = 0; x < targetLength; ++x) quads_ = std::max(quads_, (shares.of(x).weights.size() + quad - 1) / quad);
  for (int x = 0; x < targetLength; ++x) {
    const PixelShares::Share share = shares.of(x);
    const auto weight = [&](std::size_t i) { return i < share.weights.size() ? share.weights[i] : std::uint16_t{0}; };
    firsts_.push_back(share.first);
    for (std::size_t place = 0; place < quads_ * quad; place += 2) {
      const std::uint16_t one = weight(place);
      const std::uint16_t other = weight(place + 1);
      weights_.push_back(PairWords{one, one, one, one, other, other, other, other});
    }
  }
}

std::size_t ColumnAverage::bytesOfRow() const {
  return channels * (static_cast<std::size_t>(sourceLength_) + quad * quads_);
}

void ColumnAverage::average(const Rows& rows, const Targets& targets) const {
  const PairWords* weights = weights_.data();
  std::size_t place = 0;
  for (const int first : firsts_) {
    const std::size_t offset = channels * static_cast<std::size_t>(first);
    PairWords one = {};
    PairWords other = {};
    for (std::size_t i = 0; i < quads_; ++i, weights += 2) {
      const QuadBytes ofOne = quadAt(rows[0] + offset + i * quad * channels);
      const QuadBytes ofOther = quadAt(rows[1] + offset + i * quad * channels);
      one += firstPairOf(ofOne) * weights[0] + secondPairOf(ofOne) * weights[1];
      other += firstPairOf(ofOther) * weights[0] + secondPairOf(ofOther) * weights[1];
    }
    // There is room for the sums of both in one vector.
    const PairWords sums = __builtin_shufflevector(one, other, 0, 1, 2, 3, 8, 9, 10, 11) +
                           __builtin_shufflevector(one, other, 4, 5, 6, 7, 12, 13, 14, 15) + PixelShares::whole / 2;
    const PairBytes averages = __builtin_convertvector(sums / PixelShares::whole, PairBytes);
    std::array<std::uint8_t, pairBytes> bytes;
    std::memcpy(bytes.data(), &averages, sizeof averages);
    std::memcpy(targets[0] + place, bytes.data(), channels);
    std::memcpy(targets[1] + place, bytes.data() + channels, channels);
    place += channels;
  }
}

}  // namespace orvel
