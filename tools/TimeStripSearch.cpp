#include "tools/TimeStripSearch.hpp"

#include "tools/TimeStripLayout.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace orvel::phone {
namespace {

using namespace strip;

constexpr int darkest = 127;
constexpr int smallestFoundBlock = 4;
// Small enough that a few of the rows cross the bars of the smallest strip.
constexpr int rowStep = 6;
constexpr double toleratedDeviation = 0.3;
// Small pictures of a screen need not have its shape.
constexpr double mostDistortion = 1.6;
constexpr std::size_t mostFindersInRow = 64;

bool isNear(double value, double expected) {
  return std::abs(value - expected) <= toleratedDeviation * expected;
}

/// Whether the bars between these edges have the widths of a finder's.
bool hasFinderBars(const int* edges) {
  constexpr std::array widths = {1, 1, 3, 1, 1};
  const double block = static_cast<double>(edges[widths.size()] - edges[0]) / finderWidth;
  if (block < smallestFoundBlock) return false;
  for (std::size_t bar = 0; bar < widths.size(); ++bar) {
    // An edge is off by half a pixel or so, and that counts for more the smaller the blocks are.
    if (std::abs(edges[bar + 1] - edges[bar] - widths[bar] * block) > toleratedDeviation * block + 1) return false;
  }
  return true;
}

}  // namespace

std::optional<std::uint64_t> TimeStripSearch::run() {
  std::optional<std::uint64_t> latest;
  for (int y = 0; y < picture_.height && attemptsLeft_ > 0; y += rowStep) latest = std::max(latest, searchRow(y));
  return latest;
}

std::optional<std::uint64_t> TimeStripSearch::searchRow(int y) {
  findFinders(y);
  std::optional<std::uint64_t> latest;
  for (std::size_t left = 0; left < finders_.size(); ++left) {
    for (std::size_t right = left + 1; right < finders_.size(); ++right) {
      const double block = (finders_[right].middle - finders_[left].middle) / finderDistance;
      if (!isNear(finders_[left].block, block) || !isNear(finders_[right].block, block)) continue;
      if (attemptsLeft_-- <= 0) return latest;
      latest = std::max(latest, readBetween(finders_[left], finders_[right], y));
    }
  }
  return latest;
}

/// Looks along one row for what could be finders: from light to dark, and so on.
void TimeStripSearch::findFinders(int y) {
  constexpr std::size_t finderEdges = 6;
  edges_.clear();
  finders_.clear();
  const auto row = picture_.row(y);
  bool dark = false;
  for (int x = 0; x < picture_.width; ++x) {
    const bool now = row[static_cast<std::size_t>(x)] <= darkest;
    if (now != dark) edges_.push_back(x);
    dark = now;
  }
  for (std::size_t first = 0; first + finderEdges <= edges_.size() && finders_.size() < mostFindersInRow; first += 2) {
    const int* edges = edges_.data() + first;
    if (!hasFinderBars(edges)) continue;
    finders_.push_back({(edges[0] + edges[finderEdges - 1]) / 2.0,
                        static_cast<double>(edges[finderEdges - 1] - edges[0]) / finderWidth});
  }
}

std::optional<std::uint64_t> TimeStripSearch::readBetween(const Finder& left, const Finder& right, int y) const {
  const double block = (right.middle - left.middle) / finderDistance;
  const Extent extent = darkExtent(static_cast<int>(left.middle), y);
  const double rowHeight = (extent.bottom - extent.top) / dataRows;
  if (rowHeight < block / mostDistortion || rowHeight > block * mostDistortion) return std::nullopt;
  std::uint64_t bits = 0;
  for (int row = 0; row < dataRows; ++row) {
    for (int column = 0; column < dataColumns; ++column) {
      const auto dark = blockAt(left.middle + (dataDistance + column) * block, extent.top + (row + 0.5) * rowHeight,
                                std::min(block, rowHeight));
      if (!dark) return std::nullopt;
      bits = bits << 1 | (*dark ? 1 : 0);
    }
  }
  if (protectedBits(bits >> checksumBits) != bits) return std::nullopt;
  return bits;
}

/// How far the middle bar of a finder goes up and down from this pixel.
TimeStripSearch::Extent TimeStripSearch::darkExtent(int x, int y) const {
  int top = y;
  while (top > 0 && isDark(x, top - 1)) --top;
  int bottom = y + 1;
  while (bottom < picture_.height && isDark(x, bottom)) ++bottom;
  return {static_cast<double>(top), static_cast<double>(bottom)};
}

bool TimeStripSearch::isDark(int x, int y) const {
  return picture_.row(y)[static_cast<std::size_t>(x)] <= darkest;
}

/// Whether the block with this middle is dark, by its inner quarter; nothing outside the picture.
std::optional<bool> TimeStripSearch::blockAt(double x, double y, double size) const {
  const int left = static_cast<int>(x - size / 4);
  const int top = static_cast<int>(y - size / 4);
  const int right = static_cast<int>(x + size / 4);
  const int bottom = static_cast<int>(y + size / 4);
  if (left < 0 || top < 0 || right >= picture_.width || bottom >= picture_.height) return std::nullopt;
  long sum = 0;
  for (int row = top; row <= bottom; ++row) {
    for (int column = left; column <= right; ++column) sum += picture_.row(row)[static_cast<std::size_t>(column)];
  }
  return sum <= static_cast<long>(darkest) * (right - left + 1) * (bottom - top + 1);
}

}  // namespace orvel::phone
