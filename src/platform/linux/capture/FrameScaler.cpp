#include "platform/linux/capture/FrameScaler.hpp"

#include <libyuv/planar_functions.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

namespace orvel {
namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t pairBytes = 2 * channels;
constexpr std::size_t quad = 4;

/// The channels of four pixels as they are in memory.
using QuadBytes [[gnu::vector_size(quad * channels)]] = std::uint8_t;

/// The channels of two pixels, wide enough to be summed up, or their weights.
using PairWords [[gnu::vector_size(2 * pairBytes)]] = std::uint16_t;

using PairBytes [[gnu::vector_size(pairBytes)]] = std::uint8_t;

std::size_t bytesOf(int pixels) {
  return channels * static_cast<std::size_t>(pixels);
}

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

/// The weights of a box filter in one dimension, in fixed point: what of a row of pixels goes into each pixel of a row
/// of another length.
class FrameScaler::BoxFilter {
 public:
  /// The weights of neighbours; together they are `unity`.
  struct Taps {
    int first = 0;  ///< The first pixel that has one.
    std::span<const std::uint16_t> weights;
  };

  static constexpr int unity = 256;

  BoxFilter(int sourceLength, int targetLength);

  int sourceLength() const { return sourceLength_; }

  /// What goes into a pixel of the target.
  Taps tapsOf(int target) const {
    const Entry* entry = &entries_[static_cast<std::size_t>(target)];
    return {entry->first, std::span(weights_).subspan(entry[0].begin, entry[1].begin - entry[0].begin)};
  }

 private:
  struct Entry {
    int first = 0;
    std::uint32_t begin = 0;  // in the list of weights, where that of the next ends it
  };

  const int sourceLength_;
  std::vector<Entry> entries_;
  std::vector<std::uint16_t> weights_;
};

FrameScaler::BoxFilter::BoxFilter(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const double scale = static_cast<double>(sourceLength) / targetLength;
  entries_.reserve(static_cast<std::size_t>(targetLength) + 1);
  for (int target = 0; target < targetLength; ++target) {
    const double begin = target * scale;
    int source = std::min(static_cast<int>(begin), sourceLength - 1);
    Entry entry{source, static_cast<std::uint32_t>(weights_.size())};
    // Rounded as a sum, so that what is white stays white.
    int given = 0;
    while (given < unity) {
      const double covered = std::min((source + 1 - begin) / scale, 1.0);
      const bool isLast = source + 1 == sourceLength;
      const int sum = isLast ? unity : static_cast<int>(std::lround(unity * covered));
      if (sum == 0) entry.first = source + 1;
      if (sum > 0) weights_.push_back(static_cast<std::uint16_t>(sum - given));
      given = sum;
      ++source;
    }
    entries_.push_back(entry);
  }
  entries_.push_back({0, static_cast<std::uint32_t>(weights_.size())});
}

/// Applies the box filter along rows of pixels, four pixels at a time, in vectors of the processor.
class FrameScaler::HorizontalScaler {
 public:
  HorizontalScaler(int sourceLength, int targetLength);

  int sourceLength() const { return sourceLength_; }

  /// How much memory a row must have, with what is read behind its end and has no weight.
  std::size_t bytesOfRow() const { return bytesOf(sourceLength_) + channels * quad * quads_; }

  /// Two rows at a time, so that the weights are fetched once for both. Both may be the same.
  using Sources = std::array<const std::uint8_t*, 2>;
  using Targets = std::array<std::uint8_t*, 2>;
  void scale(const Sources& sources, const Targets& targets) const;

 private:
  const int sourceLength_;
  std::size_t quads_ = 0;           // how many quads of the row go into each pixel
  std::vector<int> firsts_;         // the first pixel of each first quad
  std::vector<PairWords> weights_;  // those of all quads, two for each
};

FrameScaler::HorizontalScaler::HorizontalScaler(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const BoxFilter filter(sourceLength, targetLength);
  for (int x = 0; x < targetLength; ++x) {
    quads_ = std::max(quads_, (filter.tapsOf(x).weights.size() + quad - 1) / quad);
  }
  for (int x = 0; x < targetLength; ++x) {
    const BoxFilter::Taps taps = filter.tapsOf(x);
    const auto weight = [&](std::size_t i) { return i < taps.weights.size() ? taps.weights[i] : std::uint16_t{0}; };
    firsts_.push_back(taps.first);
    for (std::size_t place = 0; place < quads_ * quad; place += 2) {
      const std::uint16_t one = weight(place);
      const std::uint16_t other = weight(place + 1);
      weights_.push_back(PairWords{one, one, one, one, other, other, other, other});
    }
  }
}

void FrameScaler::HorizontalScaler::scale(const Sources& sources, const Targets& targets) const {
  const PairWords* weights = weights_.data();
  std::size_t place = 0;
  for (const int first : firsts_) {
    const std::size_t offset = bytesOf(first);
    PairWords one = {};
    PairWords other = {};
    for (std::size_t i = 0; i < quads_; ++i, weights += 2) {
      const QuadBytes ofOne = quadAt(sources[0] + offset + i * quad * channels);
      const QuadBytes ofOther = quadAt(sources[1] + offset + i * quad * channels);
      one += firstPairOf(ofOne) * weights[0] + secondPairOf(ofOne) * weights[1];
      other += firstPairOf(ofOther) * weights[0] + secondPairOf(ofOther) * weights[1];
    }
    // There is room for the sums of both in one vector.
    const PairWords sums = __builtin_shufflevector(one, other, 0, 1, 2, 3, 8, 9, 10, 11) +
                           __builtin_shufflevector(one, other, 4, 5, 6, 7, 12, 13, 14, 15) + BoxFilter::unity / 2;
    const PairBytes averages = __builtin_convertvector(sums / BoxFilter::unity, PairBytes);
    std::array<std::uint8_t, pairBytes> bytes;
    std::memcpy(bytes.data(), &averages, sizeof averages);
    std::memcpy(targets[0] + place, bytes.data(), channels);
    std::memcpy(targets[1] + place, bytes.data() + channels, channels);
    place += channels;
  }
}

FrameScaler::FrameScaler(int width, int height) : width_(width), height_(height) {}

FrameScaler::~FrameScaler() = default;

PixelBuffer FrameScaler::scale(const PixelBuffer& picture) {
  if (picture.width == width_ && picture.height == height_) return picture;
  prepareFor(picture);
  const auto target = [&](int y) { return result_.data() + bytesOf(width_) * static_cast<std::size_t>(y); };
  for (int y = 0; y < height_; y += 2) {
    const int next = std::min(y + 1, height_ - 1);
    scaleVertically(picture, y, row_);
    scaleVertically(picture, next, nextRow_);
    horizontal_->scale({row_.data(), nextRow_.data()}, {target(y), target(next)});
  }
  return {result_.data(), bytesOf(width_), width_, height_};
}

void FrameScaler::prepareFor(const PixelBuffer& picture) {
  if (!horizontal_ || horizontal_->sourceLength() != picture.width) {
    horizontal_ = std::make_unique<HorizontalScaler>(picture.width, width_);
  }
  if (!vertical_ || vertical_->sourceLength() != picture.height) {
    vertical_ = std::make_unique<BoxFilter>(picture.height, height_);
  }
  row_.resize(horizontal_->bytesOfRow());
  nextRow_.resize(horizontal_->bytesOfRow());
  result_.resize(bytesOf(width_) * static_cast<std::size_t>(height_));
}

/// Makes one row of those that a row of the target covers: mixes in one after the other.
void FrameScaler::scaleVertically(const PixelBuffer& picture, int row, std::vector<std::uint8_t>& target) const {
  const BoxFilter::Taps taps = vertical_->tapsOf(row);
  const std::uint8_t* next = picture.bytes + picture.bytesPerRow * static_cast<std::size_t>(taps.first);
  const int bytes = static_cast<int>(bytesOf(picture.width));
  const std::uint8_t* average = next;
  int sum = taps.weights.front();
  for (const int weight : taps.weights.subspan(1)) {
    sum += weight;
    next += picture.bytesPerRow;
    libyuv::InterpolatePlane(average, 0, next, 0, target.data(), 0, bytes, 1, BoxFilter::unity * weight / sum);
    average = target.data();
  }
  if (average != target.data()) std::memcpy(target.data(), average, static_cast<std::size_t>(bytes));
}

}  // namespace orvel
