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

// Key events are posted while the lock is held: the desktop must get them in the order of what is remembered here. To
// post one is to queue it; it calls nobody back, and takes no lock under which this one is wanted.

void HeldKeys::post(Phone phone, const KeyEvent& event) {
  state_.withLock([&](State& state) {
    if (event.down) {
      press(state, phone, event);
    } else {
      release(state, phone, event);
    }
  });
}

void HeldKeys::press(State& state, Phone phone, KeyEvent event) {
  if (!isModifier(event.keyCode)) event.unwantedKeys = modifiersOfOthers(state.keys, phone);
  if (!events_.post(event)) return;
  Holders& holders = state.keys[event.keyCode];
  std::erase(holders, phone);
  holders.push_back(phone);
}

/// False when the desktop has refused the release; the phone then still holds the key.
bool HeldKeys::release(State& state, Phone phone, KeyEvent event) {
  const auto key = state.keys.find(event.keyCode);
  if (key == state.keys.end()) return events_.post(event);
  const Holders& holders = key->second;
  const bool isHolder = contains(holders, phone);
  event.staysDown = !isHolder || holders.size() > 1;
  const bool changesNothing = event.staysDown && holders.back() != phone;
  if (!changesNothing && !events_.post(event)) return false;
  forget(state, phone, event.keyCode);
  return true;
}

void HeldKeys::forget(State& state, Phone phone, std::uint16_t keyCode) {
  const auto key = state.keys.find(keyCode);
  std::erase(key->second, phone);
  if (key->second.empty()) state.keys.erase(key);
}

void HeldKeys::releaseAll(Phone phone) {
  state_.withLock([&](State& state) {
    std::vector<std::uint16_t> held;
    for (const auto& [keyCode, holders] : state.keys) {
      if (contains(holders, phone)) held.push_back(keyCode);
    }
    for (const std::uint16_t keyCode : held) {
      if (!release(state, phone, KeyEvent{.keyCode = keyCode, .down = false})) forget(state, phone, keyCode);
    }
  });
}

void HeldKeys::releaseAll() {
  state_.withLock([&](State& state) {
    for (const auto& [keyCode, holders] : std::exchange(state.keys, {}))
      events_.post(KeyEvent{.keyCode = keyCode, .down = false});
  });
}

}  // namespace orvel
