#pragma once

#include "tools/LumaPicture.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace orvel::phone {

/// One search of a picture for a time strip: for its finders along some rows, and then for the blocks between them.
///
/// Threads: one at a time.
class TimeStripSearch {
 public:
  explicit TimeStripSearch(const LumaPicture& picture) : picture_(picture) {}

  /// The bits of a strip that is there as a whole and right by its checksum; of several, those of the latest time.
  std::optional<std::uint64_t> run();

 private:
  struct Finder {
    double middle = 0;
    double block = 0;  ///< The width of a block, roughly.
  };
  struct Extent {
    double top = 0;
    double bottom = 0;
  };

  std::optional<std::uint64_t> searchRow(int y);
  void findFinders(int y);
  std::optional<std::uint64_t> readBetween(const Finder& left, const Finder& right, int y) const;
  Extent darkExtent(int x, int y) const;
  bool isDark(int x, int y) const;
  std::optional<bool> blockAt(double x, double y, double size) const;

  const LumaPicture picture_;
  int attemptsLeft_ = 500;
  std::vector<int> edges_;
  std::vector<Finder> finders_;
};

}  // namespace orvel::phone
