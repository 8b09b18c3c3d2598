#include "platform/linux/capture/PixelShares.hpp"

#include <algorithm>
#include <cmath>

namespace orvel {

PixelShares::PixelShares(int sourceLength, int targetLength) : sourceLength_(sourceLength) {
  const double scale = static_cast<double>(sourceLength) / targetLength;
  parts_.reserve(static_cast<std::size_t>(targetLength) + 1);
  for (int place = 0; place < targetLength; ++place) {
    const double begin = place * scale;
    int source = std::min(static_cast<int>(begin), sourceLength - 1);
    Part part{source, static_cast<std::uint32_t>(weights_.size())};
    // Rounded as a sum, so that what is white stays white.
    int given = 0;
    while (given < whole) {
      const double covered = std::min((source + 1 - begin) / scale, 1.0);
      const bool isLast = source + 1 == sourceLength;
      const int sum = isLast ? whole : static_cast<int>(std::lround(whole * covered));
      if (sum == 0) part.first = source + 1;
      if (sum > 0) weights_.push_back(static_cast<std::uint16_t>(sum - given));
      given = sum;
      ++source;
    }
    parts_.push_back(part);
  }
  parts_.push_back({0, static_cast<std::uint32_t>(weights_.size())});
}

PixelShares::Share PixelShares::of(int place) const {
  const Part* part = &parts_[static_cast<std::size_t>(place)];
  return {part->first, std::span(weights_).subspan(part[0].begin, part[1].begin - part[0].begin)};
}

}  // namespace orvel
