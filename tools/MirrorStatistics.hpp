#pragma once

#include "tools/AgeCount.hpp"
#include "tools/Deadline.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace orvel::phone {

/// The numbers of a mirror: of all of it, and of the time since it was last asked how it goes.
///
/// Threads: one at a time.
class MirrorStatistics {
 public:
  explicit MirrorStatistics(Moment start) : whole_{start}, recent_{start} {}

  /// Counts a frame. Its age is known only when the picture shows the time.
  void take(std::size_t bytes, std::optional<AgeCount::Age> age);

  std::size_t frames() const { return whole_.frames; }

  /// How it went since the last time, in a line without its end.
  std::string line(Moment now);

  /// How all of it went until `end`, in lines.
  std::string report(Moment end) const;

 private:
  struct Stretch {
    Moment start;
    std::size_t frames = 0;
    std::size_t bytes = 0;
    AgeCount ages{};

    void take(std::size_t frameBytes, std::optional<AgeCount::Age> age);
    Seconds length(Moment end) const;
    double framesPerSecond(Moment end) const;
    double megabitsPerSecond(Moment end) const;
    std::size_t bytesPerFrame() const;
  };

  Stretch whole_;
  Stretch recent_;
};

}  // namespace orvel::phone
