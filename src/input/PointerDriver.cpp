#include "input/PointerDriver.hpp"

#include "input/Displays.hpp"
#include "input/EventPoster.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace orvel {
namespace {

constexpr int leftButton = 0;
constexpr int rightButton = 1;
constexpr Seconds tick{0.008};
constexpr Seconds clockIdles{1.0};
constexpr Seconds placementHolds{0.2};
constexpr int scrollLimit = 4000;
constexpr int revealSteps = 10;
constexpr double revealRadius = 26;
constexpr Seconds revealPause{0.014};

struct ButtonEvents {
  std::uint8_t code;
  MouseEventType down;
  MouseEventType up;
};

ButtonEvents eventsOf(int button) {
  switch (button) {
    case 1:
      return {1, MouseEventType::rightDown, MouseEventType::rightUp};
    case 2:
      return {2, MouseEventType::otherDown, MouseEventType::otherUp};
    default:
      return {0, MouseEventType::leftDown, MouseEventType::leftUp};
  }
}

double clampToUnit(double fraction) {
  return std::clamp(fraction, 0.0, 1.0);
}

/// From the centre of the circle that `reveal` draws.
Point revealOffset(int step) {
  const double angle = 2 * std::numbers::pi * step / revealSteps;
  return {revealRadius * std::cos(angle), revealRadius * std::sin(angle)};
}

}  // namespace

PointerDriver::PointerDriver(EventPoster& events, const Displays& displays, Clock& clock, Executor& clockQueue)
    : events_(events), displays_(displays), clock_(clock), clockQueue_(clockQueue) {}

void PointerDriver::moveRelative(double dx, double dy) {
  const Seconds now = clock_.now();
  state_.withLock([&](State& state) {
    state.pending.dx += dx;
    state.pending.dy += dy;
    state.lastInputAt = now;
    startClock(state);
  });
}

void PointerDriver::startClock(State& state) {
  if (state.clock) return;
  state.clock = std::make_unique<RepeatingTimer>(clockQueue_, clock_, Seconds(0), tick, [this] { flush(); });
}

void PointerDriver::stopClock() {
  const auto taken = state_.withLock([](State& state) { return std::move(state.clock); });
}

void PointerDriver::flush() {
  struct Taken {
    Motion motion;
    std::optional<Point> virtualPosition;
    bool leftDown;
    bool rightDown;
    std::unique_ptr<RepeatingTimer> idleClock;
  };
  const Seconds now = clock_.now();
  // Taken and judged under one lock: motion that arrives just now must not be left behind without a clock.
  const Taken taken = state_.withLock([&](State& state) {
    Taken result{std::exchange(state.pending, {}), state.virtualPosition, state.buttonsDown.contains(leftButton),
                 state.buttonsDown.contains(rightButton), nullptr};
    if (result.motion.isZero() && now - state.lastInputAt > clockIdles) result.idleClock = std::move(state.clock);
    return result;
  });
  if (taken.motion.isZero()) return;
  std::optional<Point> from;
  if (events_.tracksPointer()) {
    from = events_.pointerLocation();
    if (!from) from = taken.virtualPosition;
  }
  postMotion(taken.motion, from, taken.leftDown, taken.rightDown);
}

void PointerDriver::postMotion(Motion motion, std::optional<Point> from, bool leftDown, bool rightDown) {
  std::optional<Point> target;
  if (from) {
    target = clampToDisplays({from->x + motion.dx, from->y + motion.dy});
    settleAt(*target);
  }
  auto type = MouseEventType::moved;
  if (leftDown) {
    type = MouseEventType::leftDragged;
  } else if (rightDown) {
    type = MouseEventType::rightDragged;
  }
  // With both buttons held the event is a left drag that carries the right button's code.
  events_.post(MouseEvent{.type = type,
                          .buttonCode = static_cast<std::uint8_t>(rightDown ? rightButton : leftButton),
                          .position = target,
                          .deltaX = std::llround(motion.dx),
                          .deltaY = std::llround(motion.dy)});
  events_.flush();
}

void PointerDriver::moveAbsolute(double nx, double ny) {
  const Rect main = displays_.layout()->main;
  const bool isKnown = main.size != Size{};
  const Point position{main.minX() + clampToUnit(nx) * main.size.width,
                       main.minY() + clampToUnit(ny) * main.size.height};
  const bool dragging = state_.withLock([&](State& state) {
    if (isKnown) state.virtualPosition = position;
    state.pending = {};
    return state.buttonsDown.contains(leftButton);
  });
  if (!isKnown) return;
  events_.post(
      MouseEvent{.type = dragging ? MouseEventType::leftDragged : MouseEventType::moved, .position = position});
}

std::optional<Point> PointerDriver::currentAuthoritative() {
  if (!events_.tracksPointer()) return events_.pointerLocation();
  const Seconds now = clock_.now();
  const auto [placed, position] = state_.withLock([&](const State& state) {
    const bool recent = now - state.lastPostAt <= placementHolds && state.virtualPosition != Point{};
    return std::pair(recent && state.virtualPosition, state.virtualPosition);
  });
  if (placed) return position;
  const auto reported = events_.pointerLocation();
  if (!reported) return position;
  state_.withLock([&](State& state) { state.virtualPosition = reported; });
  return reported;
}

void PointerDriver::button(int button, bool down, int clickCount) {
  if (!postButton(button, down, clickCount)) return;
  state_.withLock([&](State& state) {
    if (down) {
      state.buttonsDown.insert(button);
    } else {
      state.buttonsDown.erase(button);
    }
  });
}

bool PointerDriver::postButton(int button, bool down, int clickCount) {
  const ButtonEvents events = eventsOf(button);
  return events_.post(MouseEvent{.type = down ? events.down : events.up,
                                 .buttonCode = events.code,
                                 .position = events_.tracksPointer() ? currentAuthoritative() : std::nullopt,
                                 .clickState = std::max(clickCount, 1)});
}

void PointerDriver::scroll(int dx, int dy) {
  events_.post(ScrollEvent{.wheel1 = std::clamp(dy, -scrollLimit, scrollLimit),
                           .wheel2 = std::clamp(dx, -scrollLimit, scrollLimit)});
}

void PointerDriver::releaseAll() {
  const auto held = state_.withLock([](const State& state) { return state.buttonsDown; });
  for (const int heldButton : held) button(heldButton, false, 1);
  if (!held.empty()) events_.flush();
  stopClock();
}

void PointerDriver::reveal() {
  const auto origin = events_.tracksPointer() ? currentAuthoritative() : std::nullopt;
  if (origin) {
    circleAround(*origin);
  } else {
    circleByDeltas();
  }
}

void PointerDriver::circleAround(Point origin) {
  for (int step = 0; step <= revealSteps; ++step) {
    const Point offset = revealOffset(step);
    postMoved({.position = clampToDisplays({origin.x + offset.x, origin.y + offset.y})});
    clock_.sleep(revealPause);
  }
  settleAt(origin);
  postMoved({.position = origin});
}

void PointerDriver::circleByDeltas() {
  std::int64_t x = 0;  // moved so far
  std::int64_t y = 0;
  const auto moveTo = [&](std::int64_t toX, std::int64_t toY) {
    postMoved({.deltaX = toX - std::exchange(x, toX), .deltaY = toY - std::exchange(y, toY)});
  };
  for (int step = 0; step <= revealSteps; ++step) {
    const Point offset = revealOffset(step);
    moveTo(std::llround(offset.x), std::llround(offset.y));
    clock_.sleep(revealPause);
  }
  moveTo(0, 0);
}

void PointerDriver::place(Point position, bool dragging) {
  const Point target = clampToDisplays(position);
  settleAt(target);
  events_.post(MouseEvent{.type = dragging ? MouseEventType::leftDragged : MouseEventType::moved, .position = target});
  events_.flush();
}

bool PointerDriver::isLeftButtonDown() const {
  return state_.withLock([](const State& state) { return state.buttonsDown.contains(leftButton); });
}

void PointerDriver::settleAt(Point position) {
  const Seconds now = clock_.now();
  state_.withLock([&](State& state) {
    state.virtualPosition = position;
    state.lastPostAt = now;
  });
}

void PointerDriver::postMoved(const MouseEvent& event) {
  events_.post(event);
  events_.flush();
}

Point PointerDriver::clampToDisplays(Point point) const {
  const auto layout = displays_.layout();
  if (layout->screens.empty()) return point;
  Rect all = layout->screens.front();
  for (const Rect& screen : layout->screens) all = all.unionWith(screen);
  return {std::min(std::max(point.x, all.minX()), all.maxX() - 1),
          std::min(std::max(point.y, all.minY()), all.maxY() - 1)};
}

}  // namespace orvel
