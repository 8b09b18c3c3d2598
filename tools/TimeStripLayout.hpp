#pragma once

#include "tools/TimeStrip.hpp"

#include <array>

/// Where what stands in a time strip, in blocks. Threads: any.
namespace orvel::phone::strip {

/// The bars of a finder: one dark, one light, three dark, one light, one dark.
inline constexpr std::array<bool, 7> finder = {true, false, true, true, true, false, true};
inline constexpr int finderWidth = 7;

inline constexpr int margin = 1;
inline constexpr int dataColumns = 12;
inline constexpr int dataRows = 5;
inline constexpr int firstData = margin + finderWidth + 1;
inline constexpr int secondFinder = firstData + dataColumns + 1;

/// From the middle of one finder to that of the other, and to that of the first column of data.
inline constexpr int finderDistance = secondFinder - margin;
inline constexpr int dataDistance = firstData - margin - finderWidth / 2;

static_assert(secondFinder + finderWidth + margin == TimeStrip::columns);
static_assert(dataRows + 2 * margin == TimeStrip::rows);

inline constexpr int bitCount = dataColumns * dataRows;
inline constexpr int checksumBits = 16;

/// The bits of a strip: a number with its checksum.
constexpr std::uint64_t protectedBits(std::uint64_t number) {
  std::uint16_t checksum = 0xffff;
  for (int place = bitCount - checksumBits - 1; place >= 0; --place) {
    const bool flips = ((checksum >> 15) & 1) != static_cast<int>((number >> place) & 1);
    checksum = static_cast<std::uint16_t>((checksum << 1) ^ (flips ? 0x1021 : 0));
  }
  return number << checksumBits | checksum;
}

}  // namespace orvel::phone::strip
