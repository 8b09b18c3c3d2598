#pragma once

#include "base/Clock.hpp"
#include "base/Geometry.hpp"
#include "base/Guarded.hpp"

#include <deque>
#include <optional>

namespace orvel {

/// The places where the pointer was put a moment ago. The system says where it is only once it has handled the events,
/// so what it says may still be a place before the last.
///
/// It may also keep the pointer where it is, as at a gap between displays: when it says the same place for longer than
/// it takes to handle an event, then it is believed, from then on until it says another.
///
/// Threads: any.
class PointerTrail {
 public:
  explicit PointerTrail(const Clock& clock) : clock_(clock) {}

  /// Whether nothing was put lately, so that `begin` is wanted before the next.
  bool isIdle() const;

  /// Where the system says that the pointer is, before anything is put.
  void begin(Point reported);

  /// An event at that place was posted.
  void put(Point place);

  /// Where the pointer is while the system says that it is at `reported`: where it was put last, if the system may not
  /// have handled yet what was put next after `reported`; `reported`, if it has, or if somebody else has moved it.
  Point resolve(Point reported);

 private:
  struct Place {
    Point point;
    Seconds putAt{};
  };

  struct State {
    std::deque<Place> places;      ///< The oldest first.
    std::optional<Point> stuckAt;  ///< Where the system keeps the pointer, although it was put elsewhere.
  };

  /// What the place means that the system reports: where it was put last or somebody else has moved it; one before the
  /// last, on the way; one that it did not leave.
  enum class Report { current, outdated, stuck };

  static bool isIdle(const State& state, Seconds now);
  static Report classify(const State& state, Point reported, Seconds now);

  const Clock& clock_;
  Guarded<State> state_;
};

}  // namespace orvel
