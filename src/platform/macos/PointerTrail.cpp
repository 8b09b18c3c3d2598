#include "platform/macos/PointerTrail.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace orvel {
namespace {

/// After which the reported place counts, whatever was posted.
constexpr Seconds longestDelay{0.2};

/// More than are put within the delay.
constexpr std::size_t mostPlaces = 64;

/// Half a point, as the system may round.
bool isSame(Point left, Point right) {
  return std::abs(left.x - right.x) <= 0.5 && std::abs(left.y - right.y) <= 0.5;
}

}  // namespace

bool PointerTrail::isIdle() const {
  const Seconds now = clock_.now();
  return state_.withLock([now](const State& state) { return isIdle(state, now); });
}

bool PointerTrail::isIdle(const State& state, Seconds now) {
  return state.places.empty() || now - state.places.back().putAt > longestDelay;
}

void PointerTrail::begin(Point reported) {
  const Seconds now = clock_.now();
  state_.withLock([=](State& state) { state = {.places = {{reported, now}}, .stuckAt = std::nullopt}; });
}

void PointerTrail::put(Point place) {
  const Seconds now = clock_.now();
  state_.withLock([=](State& state) {
    if (state.places.size() == mostPlaces) state.places.pop_front();
    state.places.push_back({place, now});
  });
}

Point PointerTrail::resolve(Point reported) {
  const Seconds now = clock_.now();
  return state_.withLock([=](State& state) {
    if (isIdle(state, now)) return reported;
    const Place last = state.places.back();
    const Report report = classify(state, reported, now);
    state.stuckAt = report == Report::stuck ? std::optional(reported) : std::nullopt;
    if (report == Report::outdated) return last.point;
    if (report == Report::current) state.places = {{reported, last.putAt}};
    return reported;
  });
}

PointerTrail::Report PointerTrail::classify(const State& state, Point reported, Seconds now) {
  const auto isThere = [reported](const Place& place) { return isSame(place.point, reported); };
  if (isThere(state.places.back())) return Report::current;
  if (state.stuckAt && isSame(*state.stuckAt, reported)) return Report::stuck;
  const auto found = std::find_if(state.places.rbegin(), state.places.rend(), isThere);
  if (found == state.places.rend()) return Report::current;
  return now - std::prev(found)->putAt <= longestDelay ? Report::outdated : Report::stuck;
}

}  // namespace orvel
