#include "input/HeldKeys.hpp"

#include "input/EventPoster.hpp"

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

bool contains(const std::vector<HeldKeys::Phone>& phones, HeldKeys::Phone phone) {
  return std::find(phones.begin(), phones.end(), phone) != phones.end();
}

/// Command, shift, option and control, on both sides. Caps Lock acts when it is pressed, not while it is held.
bool isModifier(std::uint16_t keyCode) {
  constexpr std::uint16_t rightCommand = 54;
  constexpr std::uint16_t capsLock = 57;
  constexpr std::uint16_t rightControl = 62;
  return keyCode >= rightCommand && keyCode <= rightControl && keyCode != capsLock;
}

std::vector<std::uint16_t> modifiersOfOthers(const std::map<std::uint16_t, std::vector<HeldKeys::Phone>>& keys,
                                             HeldKeys::Phone phone) {
  std::vector<std::uint16_t> modifiers;
  for (const auto& [keyCode, holders] : keys) {
    if (isModifier(keyCode) && !contains(holders, phone)) modifiers.push_back(keyCode);
  }
  return modifiers;
}

}  // namespace

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

void HeldKeys::press(Phone phone, KeyEvent event) {
  if (!isModifier(event.keyCode)) {
    event.unwantedKeys = state_.withLock([&](const State& state) { return modifiersOfOthers(state.keys, phone); });
  }
  if (!events_.post(event)) return;
  state_.withLock([&](State& state) {
    Holders& holders = state.keys[event.keyCode];
    std::erase(holders, phone);
    holders.push_back(phone);
  });
}

void HeldKeys::release(Phone phone, const KeyEvent& event) {
  const bool wasHeld = holds(phone, event.keyCode);
  if (letGo(phone, event) || !wasHeld) return;
  state_.withLock([&](State& state) { state.keys[event.keyCode].push_back(phone); });
}

/// False when the desktop has refused the release.
bool HeldKeys::letGo(Phone phone, KeyEvent event) {
  const bool changesNothing = state_.withLock([&](State& state) {
    const auto key = state.keys.find(event.keyCode);
    if (key == state.keys.end()) return false;
    Holders& holders = key->second;
    const bool isNewest = !holders.empty() && holders.back() == phone;
    std::erase(holders, phone);
    event.staysDown = !holders.empty();
    if (holders.empty()) state.keys.erase(key);
    return event.staysDown && !isNewest;
  });
  return changesNothing || events_.post(event);
}

bool HeldKeys::holds(Phone phone, std::uint16_t keyCode) const {
  return state_.withLock([&](const State& state) {
    const auto key = state.keys.find(keyCode);
    return key != state.keys.end() && contains(key->second, phone);
  });
}

void HeldKeys::releaseAll(Phone phone) {
  const auto held = state_.withLock([&](const State& state) {
    std::vector<std::uint16_t> keys;
    for (const auto& [keyCode, holders] : state.keys) {
      if (contains(holders, phone)) keys.push_back(keyCode);
    }
    return keys;
  });
  for (const std::uint16_t keyCode : held) letGo(phone, KeyEvent{.keyCode = keyCode, .down = false});
}

void HeldKeys::releaseAll() {
  const auto keys = state_.withLock([](State& state) { return std::exchange(state.keys, {}); });
  for (const auto& [keyCode, holders] : keys) events_.post(KeyEvent{.keyCode = keyCode, .down = false});
}

}  // namespace orvel
