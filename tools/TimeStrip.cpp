#include "tools/TimeStrip.hpp"

#include "tools/TimeStripLayout.hpp"
#include "tools/TimeStripSearch.hpp"

namespace orvel::phone {
namespace {

using namespace strip;

constexpr std::uint64_t mostMilliseconds = (std::uint64_t{1} << (bitCount - checksumBits)) - 1;

}  // namespace

TimeStrip::TimeStrip(WallTime time)
    : bits_(protectedBits(static_cast<std::uint64_t>(time.time_since_epoch().count()) & mostMilliseconds)) {}

bool TimeStrip::isDark(int column, int row) const {
  if (row < margin || row >= margin + dataRows) return false;
  const auto finderBar = [&](int start) { return finder.at(static_cast<std::size_t>(column - start)); };
  if (column >= margin && column < margin + finderWidth) return finderBar(margin);
  if (column >= secondFinder && column < secondFinder + finderWidth) return finderBar(secondFinder);
  if (column < firstData || column >= firstData + dataColumns) return false;
  const int place = (row - margin) * dataColumns + column - firstData;
  return (bits_ >> (bitCount - 1 - place) & 1) != 0;
}

std::optional<WallTime> TimeStrip::find(const LumaPicture& picture) {
  const auto bits = TimeStripSearch(picture).run();
  if (!bits) return std::nullopt;
  return WallTime(std::chrono::milliseconds(*bits >> checksumBits));
}

}  // namespace orvel::phone
