#include "platform/macos/events/PointerTrail.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace orvel {
namespace {

/// After which the system's word counts, whatever was posted.
constexpr Seconds longestDelay{0.2};

/// More than are put within the delay.
constexpr std::size_t mostPlaces = 64;

/// Half a point, as the system may round.
bool isSame(Point left, Point right) {
  return std::abs(left.x - right.x) <= 0.5 && std::abs(left.y - right.y) <= 0.5;
}

}  // namespace

bool PointerTrail::isCold() const {
  return state_.withLock([this](const State& state) { return isCold(state); });
}

bool PointerTrail::isCold(const State& state) const {
  return state.places.empty() || clock_.now() - state.putAt > longestDelay;
}

void PointerTrail::begin(Point reported) {
  state_.withLock([reported](State& state) { state.places = {reported}; });
}

void PointerTrail::put(Point place) {
  const Seconds now = clock_.now();
  state_.withLock([=](State& state) {
    if (state.places.size() == mostPlaces) state.places.pop_front();
    state.places.push_back(place);
    state.putAt = now;
  });
}

Point PointerTrail::resolve(Point reported) {
  return state_.withLock([&](State& state) {
    if (isCold(state)) return reported;
    const Point last = state.places.back();
    const bool hasArrived = isSame(last, reported);
    const bool isBehind = std::any_of(state.places.begin(), state.places.end(),
                                      [reported](Point place) { return isSame(place, reported); });
    if (isBehind && !hasArrived) return last;
    state.places = {reported};
    return reported;
  });
}

}  // namespace orvel
