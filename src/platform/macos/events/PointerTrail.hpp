#pragma once

#include "base/Clock.hpp"
#include "base/Geometry.hpp"
#include "base/Guarded.hpp"

#include <deque>

namespace orvel {

/// The places where the pointer was put a moment ago. The system says where it is only once it has handled the events,
/// so what it says may still be a place before the last.
///
/// Threads: any.
class PointerTrail {
 public:
  explicit PointerTrail(const Clock& clock) : clock_(clock) {}

  /// Whether nothing was put lately, so that `begin` is wanted before the next.
  bool isCold() const;

  /// Where the system says that the pointer is, before anything is put.
  void begin(Point reported);

  /// An event at that place was posted.
  void put(Point place);

  /// Where the pointer is while the system says that it is at `reported`: where it was put last, if the system is still
  /// behind; `reported`, if somebody else has moved it or the last event is longer ago than the system takes.
  Point resolve(Point reported);

 private:
  struct State {
    std::deque<Point> places;  ///< The oldest first.
    Seconds putAt{};
  };

  bool isCold(const State& state) const;

  const Clock& clock_;
  Guarded<State> state_;
};

}  // namespace orvel
