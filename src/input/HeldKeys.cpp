#include "input/HeldKeys.hpp"

#include "input/EventPoster.hpp"

#include <utility>

namespace orvel {

HeldKeys::HeldKeys(EventPoster& events) : events_(events) {}

HeldKeys::Phone HeldKeys::addPhone() {
  return state_.withLock([](State& state) { return ++state.phones; });
}

void HeldKeys::post(Phone phone, const KeyEvent& event) {
  if (event.down) {
    press(phone, event);
  } else {
    release(phone, event);
  }
}

// A press is remembered after it is posted, and forgotten before its release is posted. Whatever other threads post in
// between, no key stays down that is not remembered.

void HeldKeys::press(Phone phone, const KeyEvent& event) {
  if (!events_.post(event)) return;
  state_.withLock([&](State& state) {
    Holders& holders = state.keys[event.keyCode];
    std::erase(holders, phone);
    holders.push_back(phone);
  });
}

void HeldKeys::release(Phone phone, const KeyEvent& event) {
  const Release release = state_.withLock([&](State& state) { return letGo(state, event.keyCode, phone); });
  if (!release.isLast || events_.post(event) || !release.wasHeld) return;
  state_.withLock([&](State& state) { state.keys[event.keyCode].push_back(phone); });
}

HeldKeys::Release HeldKeys::letGo(State& state, std::uint16_t keyCode, Phone phone) {
  const auto key = state.keys.find(keyCode);
  if (key == state.keys.end()) return {.wasHeld = false, .isLast = true};
  const bool wasHeld = std::erase(key->second, phone) > 0;
  const bool isLast = key->second.empty();
  if (isLast) state.keys.erase(key);
  return {.wasHeld = wasHeld, .isLast = isLast};
}

void HeldKeys::releaseAll(Phone phone) {
  const auto released = state_.withLock([&](State& state) {
    std::vector<std::uint16_t> keys;
    for (const auto& [keyCode, holders] : std::map(state.keys)) {
      const Release release = letGo(state, keyCode, phone);
      if (release.wasHeld && release.isLast) keys.push_back(keyCode);
    }
    return keys;
  });
  for (const std::uint16_t keyCode : released) events_.post(KeyEvent{.keyCode = keyCode, .down = false});
}

void HeldKeys::releaseAll() {
  const auto keys = state_.withLock([](State& state) { return std::exchange(state.keys, {}); });
  for (const auto& [keyCode, holders] : keys) events_.post(KeyEvent{.keyCode = keyCode, .down = false});
}

}  // namespace orvel
