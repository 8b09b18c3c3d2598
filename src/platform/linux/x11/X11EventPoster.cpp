#include "platform/linux/x11/X11EventPoster.hpp"

#include "platform/linux/keyboard/KeyPositions.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Displays.hpp"

#include <linux/input-event-codes.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace orvel {
namespace {

constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;
constexpr std::uint8_t wheelLeft = 6;
constexpr std::uint8_t wheelRight = 7;
constexpr std::int64_t pixelsPerNotch = 40;
constexpr std::uint8_t absoluteMotion = 0;
constexpr std::uint8_t relativeMotion = 1;
constexpr std::uint8_t anyDevice = 0;

struct ModifierKey {
  std::uint64_t flags;
  std::uint8_t keyCode;
};

constexpr std::array modifierKeys = {
    ModifierKey{modifier::shift, KEY_LEFTSHIFT + 8},
    ModifierKey{modifier::option, KEY_LEFTALT + 8},
    ModifierKey{modifier::control | modifier::command, KEY_LEFTCTRL + 8},
};

/// What is lifted from keys that shall not have it.
constexpr std::array<std::uint8_t, 8> heldModifierKeys = {
    KEY_LEFTSHIFT + 8, KEY_RIGHTSHIFT + 8, KEY_LEFTCTRL + 8, KEY_RIGHTCTRL + 8,
    KEY_LEFTALT + 8,   KEY_RIGHTALT + 8,   KEY_LEFTMETA + 8, KEY_RIGHTMETA + 8,
};

bool isModifierKey(std::uint8_t keyCode) {
  return std::ranges::find(heldModifierKeys, keyCode) != heldModifierKeys.end();
}

constexpr std::uint8_t bitOf(std::size_t modifierKey) {
  return static_cast<std::uint8_t>(1u << modifierKey);
}

std::uint8_t modifiersOf(std::uint64_t flags) {
  std::uint8_t modifiers = 0;
  for (std::size_t i = 0; i < modifierKeys.size(); ++i) {
    if (flags & modifierKeys[i].flags) modifiers |= bitOf(i);
  }
  return modifiers;
}

struct ButtonChange {
  std::uint8_t type;
  std::uint8_t button;
};

/// Nothing for motion.
std::optional<ButtonChange> buttonChangeOf(MouseEventType type) {
  switch (type) {
    case MouseEventType::leftDown:
      return ButtonChange{XCB_BUTTON_PRESS, 1};
    case MouseEventType::leftUp:
      return ButtonChange{XCB_BUTTON_RELEASE, 1};
    case MouseEventType::otherDown:
      return ButtonChange{XCB_BUTTON_PRESS, 2};
    case MouseEventType::otherUp:
      return ButtonChange{XCB_BUTTON_RELEASE, 2};
    case MouseEventType::rightDown:
      return ButtonChange{XCB_BUTTON_PRESS, 3};
    case MouseEventType::rightUp:
      return ButtonChange{XCB_BUTTON_RELEASE, 3};
    case MouseEventType::moved:
    case MouseEventType::leftDragged:
    case MouseEventType::rightDragged:
      return std::nullopt;
  }
  return std::nullopt;
}

std::int16_t pixelAt(double coordinate) {
  using Limits = std::numeric_limits<std::int16_t>;
  // In this order, what is not a number becomes the lowest one.
  const double bounded = std::min<double>(Limits::max(), std::max<double>(Limits::min(), std::floor(coordinate)));
  return static_cast<std::int16_t>(bounded);
}

std::int16_t within(std::int16_t pixel, double length) {
  return static_cast<std::int16_t>(std::clamp<double>(pixel, 0, std::max(0.0, length - 1)));
}

/// The keys that the server itself repeats while they are held: all but modifiers and locks.
std::bitset<256> askRepeatingKeys(const X11Connection& connection) {
  const auto asked = xcb_get_keyboard_control(connection.get());
  const auto reply = awaitReply(connection, xcb_get_keyboard_control_reply, asked);
  std::bitset<256> keys;
  if (!reply) return keys;
  for (std::size_t key = 0; key < keys.size(); ++key) keys[key] = reply->auto_repeats[key / 8] >> key % 8 & 1;
  return keys;
}

}  // namespace

X11EventPoster::X11EventPoster(X11Connection& connection, const X11Displays& displays)
    : connection_(connection),
      displays_(displays),
      reachesDesktop_(connection.extension(xcb_test_id) != nullptr && !connection.isXwayland()),
      repeatingKeys_(askRepeatingKeys(connection)),
      typist_(connection, *this) {
  // Some window managers hold all other programs off while a window is dragged: the drag must reach them all the same.
  if (reachesDesktop_) xcb_test_grab_control(connection_.get(), true);
}

// The queue is filled while the lock is held, in all of them: what the server gets must have the order of what is
// remembered here, and the keys of one chord must stay together. It copies into memory, and waits only when that is
// full and the server takes nothing.

bool X11EventPoster::post(const MouseEvent& event) {
  if (!canPost()) return false;
  const auto change = buttonChangeOf(event.type);
  state_.withLock([&](State& state) {
    if (event.position) {
      putPointer(state, {pixelAt(event.position->x), pixelAt(event.position->y)}, !change);
    } else if (!change) {
      movePointer(state, {pixelAt(static_cast<double>(event.deltaX)), pixelAt(static_cast<double>(event.deltaY))});
    }
    if (change) queue(state, change->type, change->button);
  });
  return true;
}

void X11EventPoster::putPointer(State& state, Position target, bool always) {
  // Since the last batch another hand may have moved the pointer away.
  const bool isThere = state.isPointerKnown && state.pointer == onScreen(target);
  if (always || !isThere) queue(state, XCB_MOTION_NOTIFY, absoluteMotion, target);
  state.pointer = onScreen(target);
  state.isPointerKnown = true;
  state.isPointerUnflushed = true;
  ++state.placements;
}

void X11EventPoster::movePointer(State& state, Position delta) {
  queue(state, XCB_MOTION_NOTIFY, relativeMotion, delta);
  state.pointer.reset();
  state.isPointerKnown = false;
  ++state.placements;
}

bool X11EventPoster::post(const ScrollEvent& event) {
  if (!canPost()) return false;
  state_.withLock([&](State& state) {
    turn(state, state.verticalRemainder, event.wheel1, wheelUp, wheelDown);
    turn(state, state.horizontalRemainder, event.wheel2, wheelLeft, wheelRight);
  });
  return true;
}

bool X11EventPoster::post(const KeyEvent& event) {
  const auto keyCode = KeyPositions::keyCodeOf(event.keyCode);
  if (!keyCode || !canPost()) return false;
  state_.withLock([&](State& state) {
    if (event.down) {
      liftModifiers(state, event, *keyCode);
      press(state, *keyCode, modifiersOf(event.flags));
    } else {
      release(state, *keyCode, event.staysDown);
    }
  });
  return true;
}

bool X11EventPoster::post(const SystemDefinedEvent& event) {
  const auto change = KeyPositions::changeOf(event);
  if (!change || !canPost()) return false;
  state_.withLock([&](State& state) {
    if (change->down) {
      press(state, change->keyCode, 0);
    } else {
      release(state, change->keyCode, false);
    }
  });
  return true;
}

bool X11EventPoster::post(const TextEvent& event) {
  return canPost() && typist_.type(event.text);
}

std::optional<Point> X11EventPoster::pointerLocation() {
  const auto toPoint = [](Position position) {
    return Point{static_cast<double>(position.x), static_cast<double>(position.y)};
  };
  std::uint64_t placements = 0;
  const auto unflushed = state_.withLock([&](const State& state) {
    placements = state.placements;
    return state.isPointerUnflushed ? state.pointer : std::nullopt;
  });
  if (unflushed) return toPoint(*unflushed);

  const auto asked = xcb_query_pointer(connection_.get(), connection_.root());
  const auto reply = awaitReply(connection_, xcb_query_pointer_reply, asked);
  if (!reply || !reply->same_screen) return std::nullopt;
  const Position reported{reply->root_x, reply->root_y};
  state_.withLock([&](State& state) {
    // What another thread has posted meanwhile is the newer truth.
    if (state.placements != placements) return;
    state.pointer = reported;
    state.isPointerKnown = true;
  });
  return toPoint(reported);
}

void X11EventPoster::flush() {
  const bool needed = state_.withLock([](State& state) {
    state.isPointerUnflushed = false;
    state.isPointerKnown = false;
    return std::exchange(state.isUnflushed, false);
  });
  if (needed) xcb_flush(connection_.get());
}

KeyQueue::Held X11EventPoster::held() {
  return state_.withLock([](const State& state) {
    Held held{.keys = {}, .version = state.keyVersion};
    for (std::size_t key = 0; key < state.keys.size(); ++key)
      held.keys[key] = state.keys[key].holders > 0 && !state.lifted[key];
    return held;
  });
}

bool X11EventPoster::queueInOneGo(const std::vector<KeyChange>& changes, std::uint64_t version) {
  return state_.withLock([&](State& state) {
    if (state.keyVersion != version) return false;
    for (const auto& [keyCode, down] : changes) queue(state, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keyCode);
    return true;
  });
}

bool X11EventPoster::canPost() const {
  return reachesDesktop_ && connection_.isAlive();
}

void X11EventPoster::turn(State& state, std::int64_t& remainder, std::int32_t pixels, std::uint8_t forward,
                          std::uint8_t backward) {
  remainder += pixels;
  const std::uint8_t button = remainder > 0 ? forward : backward;
  for (auto notches = std::abs(remainder / pixelsPerNotch); notches > 0; --notches) {
    queue(state, XCB_BUTTON_PRESS, button);
    queue(state, XCB_BUTTON_RELEASE, button);
  }
  remainder %= pixelsPerNotch;
}

void X11EventPoster::press(State& state, std::uint8_t keyCode, std::uint8_t modifiers) {
  Key& key = state.keys[keyCode];
  const std::uint8_t before = std::exchange(key.heldModifiers, modifiers);
  letGoModifiers(state, before & ~modifiers);
  holdModifiers(state, modifiers & ~before);
  if (!key.isDown) {
    key.isDown = true;
    hold(state, keyCode);
  } else if (state.lifted[keyCode]) {
    state.lifted.reset(keyCode);
    queue(state, XCB_KEY_PRESS, keyCode);
  } else if (repeatingKeys_[keyCode]) {
    // The server takes no press of a key that is down. Its own repeats look like this, too, and start anew after it.
    queue(state, XCB_KEY_RELEASE, keyCode);
    queue(state, XCB_KEY_PRESS, keyCode);
  }
}

void X11EventPoster::release(State& state, std::uint8_t keyCode, bool staysDown) {
  Key& key = state.keys[keyCode];
  // A key that somebody else holds down is not ours to release.
  if (!key.isDown) return;
  if (!staysDown) {
    key.isDown = false;
    letGo(state, keyCode);
  }
  letGoModifiers(state, std::exchange(key.heldModifiers, std::uint8_t{0}));
  if (state.liftedFor == keyCode) setLifted(state, {});
}

/// Has a key that is about to be pressed not be modified by what is held for other keys, or by other phones. Modifiers
/// themselves add up.
void X11EventPoster::liftModifiers(State& state, const KeyEvent& event, std::uint8_t keyCode) {
  if (isModifierKey(keyCode)) return;
  std::bitset<256> unwanted;
  for (const std::uint16_t key : event.unwantedKeys) {
    if (const auto code = KeyPositions::keyCodeOf(key)) unwanted.set(*code);
  }
  std::bitset<256> lifted;
  for (const std::uint8_t modifier : heldModifierKeys) {
    const Key& key = state.keys[modifier];
    lifted[modifier] = key.holders > 0 && (!key.isDown || unwanted[modifier]);
  }
  const std::uint8_t named = modifiersOf(event.flags);
  for (std::size_t i = 0; i < modifierKeys.size(); ++i) {
    if (named & bitOf(i)) lifted.reset(modifierKeys[i].keyCode);
  }
  setLifted(state, lifted);
  state.liftedFor = keyCode;
}

void X11EventPoster::setLifted(State& state, const std::bitset<256>& lifted) {
  const auto before = std::exchange(state.lifted, lifted);
  for (const std::uint8_t modifier : heldModifierKeys) {
    const bool isHeld = state.keys[modifier].holders > 0;
    if (isHeld && before[modifier] != lifted[modifier])
      queue(state, lifted[modifier] ? XCB_KEY_RELEASE : XCB_KEY_PRESS, modifier);
  }
}

void X11EventPoster::holdModifiers(State& state, std::uint8_t modifiers) {
  for (std::size_t i = 0; i < modifierKeys.size(); ++i) {
    if (modifiers & bitOf(i)) hold(state, modifierKeys[i].keyCode);
  }
}

void X11EventPoster::letGoModifiers(State& state, std::uint8_t modifiers) {
  for (std::size_t i = modifierKeys.size(); i-- > 0;) {
    if (modifiers & bitOf(i)) letGo(state, modifierKeys[i].keyCode);
  }
}

void X11EventPoster::hold(State& state, std::uint8_t keyCode) {
  const bool isDown = state.keys[keyCode].holders++ > 0 && !state.lifted[keyCode];
  state.lifted.reset(keyCode);
  if (!isDown) queue(state, XCB_KEY_PRESS, keyCode);
}

void X11EventPoster::letGo(State& state, std::uint8_t keyCode) {
  if (--state.keys[keyCode].holders > 0) return;
  if (!state.lifted[keyCode]) queue(state, XCB_KEY_RELEASE, keyCode);
  state.lifted.reset(keyCode);
}

void X11EventPoster::queue(State& state, std::uint8_t type, std::uint8_t detail, Position position) const {
  if (!reachesDesktop_) return;
  xcb_test_fake_input(connection_.get(), type, detail, XCB_CURRENT_TIME, connection_.root(), position.x, position.y,
                      anyDevice);
  state.isUnflushed = true;
  if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) ++state.keyVersion;
}

X11EventPoster::Position X11EventPoster::onScreen(Position position) const {
  const Size screen = displays_.screenSize();
  return {within(position.x, screen.width), within(position.y, screen.height)};
}

}  // namespace orvel
