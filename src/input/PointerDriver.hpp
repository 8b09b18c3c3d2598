#pragma once

#include "base/Clock.hpp"
#include "base/Executor.hpp"
#include "base/Geometry.hpp"
#include "base/Guarded.hpp"
#include "base/RepeatingTimer.hpp"
#include "input/EventPoster.hpp"

#include <memory>
#include <optional>
#include <set>

namespace orvel {

class Displays;
class EventPoster;

/// Turns the phones' pointer commands into mouse events. All phones share this one pointer.
///
/// Where the desktop does not track the pointer (`EventPoster::tracksPointer`), relative motion and the circle of
/// `reveal` go by deltas, and buttons act wherever the pointer is.
///
/// `moveAbsolute`, `button` and `scroll` leave `EventPoster::flush` to the caller, who may have more to post; all
/// else flushes by itself. Events that the desktop refuses are skipped.
///
/// Threads: any. The motion clock ticks on `clockQueue`, which must have ended its work before the driver goes.
class PointerDriver {
 public:
  PointerDriver(EventPoster& events, const Displays& displays, Clock& clock, Executor& clockQueue);
  PointerDriver(const PointerDriver&) = delete;
  PointerDriver& operator=(const PointerDriver&) = delete;

  /// Adds motion in points. The motion clock posts the sum of what has come since its last tick, 8 ms ago.
  void moveRelative(double dx, double dy);

  /// Puts the pointer at a fraction of the main display: 0,0 is its left top, 1,1 its right bottom edge; values
  /// outside are clamped. Discards queued relative motion. Posts nothing while the main display is unknown.
  void moveAbsolute(double nx, double ny);

  /// Presses or releases a button (1 right, 2 middle, any other number left) where the pointer is. `clickCount` says
  /// which click of a quick series it is; values below 1 count as 1.
  void button(int button, bool down, int clickCount);

  /// Turns the wheels by pixels, each clamped to -4000 … 4000. Positive is up and left.
  void scroll(int dx, int dy);

  /// Releases every button that is held down through this driver and stops the motion clock.
  void releaseAll();

  /// Draws one small circle around the pointer, so that it can be found, and ends where it began. By deltas it may end
  /// beside that place, when an edge of the desktop cuts the circle off. Blocks for about 0.15 s.
  void reveal();

  /// Puts the pointer at a place, the nearest one on a display, from which relative motion then continues. While
  /// `dragging` it drags with the left button.
  void place(Point position, bool dragging);

  /// Whether the left button is held down through this driver.
  bool isLeftButtonDown() const;

  /// The best-known position of the pointer: where the driver put it within the last 0.2 s, else where the desktop
  /// says it is, else the last known one. Nothing when none has ever been known. A desktop that does not track the
  /// pointer is always asked, and what it does not say is unknown.
  std::optional<Point> currentAuthoritative();

  /// The nearest point inside the rectangle around all displays; the point itself when there is none.
  Point clampToDisplays(Point point) const;

 private:
  struct Motion {
    double dx = 0;
    double dy = 0;

    bool isZero() const { return dx == 0 && dy == 0; }
  };

  struct State {
    Motion pending;                        // received, not yet posted
    Seconds lastInputAt{0};                // of relative motion
    std::optional<Point> virtualPosition;  // where the driver last put the pointer, or last found it
    Seconds lastPostAt{0};                 // when a tick, a reveal or `place` set it
    std::set<int> buttonsDown;
    std::unique_ptr<RepeatingTimer> clock;  // only while motion flows
  };

  void startClock(State& state);
  void stopClock();
  void flush();
  void postMotion(Motion motion, std::optional<Point> from, bool leftDown, bool rightDown);
  bool postButton(int button, bool down, int clickCount);
  void circleAround(Point origin);
  void circleByDeltas();
  void postMoved(const MouseEvent& event);
  void settleAt(Point position);

  EventPoster& events_;
  const Displays& displays_;
  Clock& clock_;
  Executor& clockQueue_;
  Guarded<State> state_;
};

}  // namespace orvel
