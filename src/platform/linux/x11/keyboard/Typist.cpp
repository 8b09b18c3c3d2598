#include "platform/linux/x11/keyboard/Typist.hpp"

#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/keyboard/CharacterKeys.hpp"

#include <unicode/utf16.h>

#include <condition_variable>
#include <string>
#include <system_error>
#include <utility>

namespace orvel {
namespace {

using namespace std::chrono_literals;

constexpr auto modifierTimeout = 2s;  // for modifiers that somebody else holds
constexpr auto layoutTimeout = 10s;   // for a layout that keeps changing
constexpr auto spareKeyTimeout = 2s;  // for spare keys that others use
constexpr auto retryInterval = 20ms;
constexpr auto readingTime = 100ms;       // for programs that do not answer pings
constexpr auto noticingTime = 30ms;       // for the same to fetch a map
constexpr auto grabbedReadingTime = 3ms;  // for the same to read what they usually read at once
constexpr auto idleTime = 1500ms;
constexpr std::size_t mostAtOnce = 64;  // characters
constexpr char32_t replacement = 0xfffd;

/// Modifiers by which programs take keys for commands: Control, Alt, and the logo keys, as the server numbers them.
constexpr KeyboardMap::Modifiers shortcutModifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

/// The control characters that have keys.
constexpr std::u32string_view controlKeys = U"\b\t\r\x1b\x7f";

constexpr bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0);
}

/// The characters to be typed; a line ends with Return.
std::u32string charactersOf(std::u16string_view text) {
  std::u32string characters;
  char32_t before = 0;
  for (std::size_t i = 0; i < text.size();) {
    char32_t character = 0;
    U16_NEXT(text.data(), i, text.size(), character);
    const char32_t last = std::exchange(before, character);
    if (U_IS_SURROGATE(character)) character = replacement;
    if (character == U'\n') character = last == U'\r' ? U'\0' : U'\r';
    if (!isControl(character) || controlKeys.find(character) != controlKeys.npos) characters += character;
  }
  return characters;
}

/// What a spare key must mean to write the character, if any keysym does.
std::optional<SpareKeys::Levels> spareMeaningOf(char32_t character, bool isLocked, bool isShifted) {
  const xkb_keysym_t keysym = xkb_utf32_to_keysym(character);
  if (keysym == XKB_KEY_NoSymbol) return std::nullopt;
  if (!isLocked) return SpareKeys::Levels{keysym, keysym};
  // Where Caps Lock does not change what a key means, GTK makes capitals of it by itself. With Shift it chooses the
  // first meaning, alone the second.
  constexpr xkb_keysym_t nothing = XKB_KEY_VoidSymbol;
  return isShifted ? SpareKeys::Levels{keysym, nothing} : SpareKeys::Levels{nothing, keysym};
}

FocusedProgram::Time currentTime() {
  return std::chrono::steady_clock::now();
}

}  // namespace

Typist::Typist(const X11Connection& connection, KeyQueue& keys)
    : connection_(connection),
      keys_(keys),
      keyboard_(connection),
      program_(connection),
      spareKeys_(connection, keyboard_) {
  spareKeys_.undoLeftovers();
}

Typist::~Typist() {
  program_.stop();
  idleWatch_ = {};
  if (!spareKeys_.isAnyBound()) return;
  giveSpareKeysBack();
  keyboard_.readMap();  // the server has then taken it
}

void Typist::stop() {
  isStopped_ = true;
  program_.stop();
}

bool Typist::type(std::u16string_view text) {
  const std::lock_guard lock(mutex_);
  const std::u32string characters = charactersOf(text);
  lastProgress_ = currentTime();
  for (std::u32string_view rest = characters; !rest.empty();) {
    if (isStopped_) return false;
    const Step step = typeSome(rest);
    if (step.characters > 0) lastProgress_ = currentTime();
    rest.remove_prefix(step.characters);
    if (!connection_.isAlive() || !resolve(step.blocker)) return false;
  }
  return true;
}

Typist::Step Typist::typeSome(std::u32string_view text) {
  const ServerGrab grab(connection_);
  const KeyQueue::Held held = keys_.held();
  auto reading = keyboard_.read();
  if (!reading) return {.blocker = Blocker::server};
  focus_ = reading->focus;
  const ModifierState state = modifierStateOf(*reading, held);
  if (isBlockedByModifiers(*reading, state)) return {.blocker = Blocker::heldModifiers};
  if ((state.foreign & shortcutModifiers) != 0) return {.blocker = Blocker::shortcuts};

  const auto lockedShortcuts = static_cast<KeyboardMap::Modifiers>(reading->locked & shortcutModifiers);
  const auto modifiers = static_cast<KeyboardMap::Modifiers>((state.foreign | reading->locked) & ~shortcutModifiers);
  CharacterKeys::Situation situation{.group = reading->group, .modifiers = modifiers, .downKeys = reading->downKeys};
  for (const std::uint8_t key : state.ownKeys) situation.downKeys.reset(key);
  const CharacterKeys keys(reading->map, situation);
  spareKeys_.forgetLost(reading->map);
  const CapitalKeys capitals{.capsLock = (reading->locked & XCB_MOD_MASK_LOCK) != 0,
                             .shift = (state.foreign & XCB_MOD_MASK_SHIFT) != 0};
  const Plan plan = planFor(text, keys, reading->map, capitals);
  if (!plan.missing.empty()) return bindFor(plan, reading->map);
  if (plan.characters == 0) return {.blocker = Blocker::noSpareKeys};
  if (!isKnown(reading->map)) return makeKnown(std::move(reading->map), keys, held);
  return strike(plan, state, held, lockedShortcuts);
}

/// Whether the program reads the keys by that map. After a change most fetch a new one only when they need it; it is
/// then the newest there is, and may be newer than the keys.
bool Typist::isKnown(const KeyboardMap& map) const {
  return hasWaited(layoutTimeout) || (known_ && known_->window == focus_ && known_->map.isSameAs(map));
}

/// A key that writes nothing has the program fetch the map. If that has changed again meanwhile, the next step sees it.
Typist::Step Typist::makeKnown(KeyboardMap map, const CharacterKeys& keys, const KeyQueue::Held& held) {
  if (unread_ && unread_->window != focus_) return {.blocker = Blocker::strokesUnread};
  const std::vector<KeyChange> tap{{.keyCode = keys.levelKey(), .down = true},
                                   {.keyCode = keys.levelKey(), .down = false}};
  if (keys.levelKey() != 0 && !keys_.queueInOneGo(tap, held.version)) return {};
  known_.emplace(KnownMap{.window = focus_, .map = std::move(map)});
  lastUse_ = currentTime();
  startIdleWatch();
  return {.blocker = Blocker::mapUnknown};
}

Typist::Step Typist::strike(const Plan& plan, const ModifierState& state, const KeyQueue::Held& held,
                            KeyboardMap::Modifiers locked) {
  if (locked != 0) keyboard_.unlock(locked);
  const bool isQueued = keys_.queueInOneGo(changesFor(plan.chords, state.ownKeys), held.version);
  if (locked != 0) keyboard_.lock(locked);
  if (!isQueued) return {};
  if (!plan.special.empty()) {
    lastUse_ = currentTime();
    unread_ = Strokes{.window = focus_, .time = lastUse_};
  }
  if (!program_.answers(focus_)) {
    // Such a program may take all that has come before it reads any: no new layout may come just behind its keys.
    xcb_flush(connection_.get());
    std::this_thread::sleep_for(grabbedReadingTime);
  }
  return {.characters = plan.characters};
}

Typist::ModifierState Typist::modifierStateOf(const Keyboard::Reading& reading, const KeyQueue::Held& held) {
  ModifierState state{.ownKeys = {}, .foreign = reading.base};
  for (std::size_t key = 0; key < held.keys.size(); ++key) {
    const auto keyCode = static_cast<std::uint8_t>(key);
    const KeyboardMap::Modifiers modifiers = reading.map.modifiersOf(keyCode);
    if (!held.keys[key] || modifiers == 0) continue;
    state.ownKeys.push_back(keyCode);
    state.foreign &= ~modifiers;
  }
  return state;
}

/// Whether what somebody else does with modifiers, such as changing the layout with them, is better waited for.
bool Typist::isBlockedByModifiers(const Keyboard::Reading& reading, const ModifierState& state) {
  if (reading.isLatched && !hasWaited(modifierTimeout)) {
    keyboard_.unlatch();
    return true;
  }
  const KeyboardMap::Modifiers blocking = state.foreign & ~XCB_MOD_MASK_LOCK;
  if (hasWaited(modifierTimeout)) tolerated_ = blocking;
  tolerated_ &= blocking;
  return blocking != tolerated_;
}

Typist::Plan Typist::planFor(std::u32string_view text, const CharacterKeys& keys, const KeyboardMap& map,
                             CapitalKeys capitals) {
  Plan plan;
  const std::size_t capacity = spareKeys_.capacity(map);
  // Waited for once, not for each piece of a text.
  isWithoutSpareKeys_ = capacity == 0 && (isWithoutSpareKeys_ || hasWaited(spareKeyTimeout));
  for (const char32_t character : text.substr(0, mostAtOnce)) {
    const auto chord = keys.chord(character);
    const auto meaning = chord || isWithoutSpareKeys_ || hasWaited(layoutTimeout)
                             ? std::nullopt
                             : spareMeaningOf(character, capitals.capsLock, capitals.shift);
    if (chord) plan.chords.push_back(*chord);
    if (meaning) {
      if (!plan.special.contains(*meaning) && plan.special.size() >= capacity) break;
      plan.special.insert(*meaning);
      if (const auto key = spareKeys_.use(*meaning)) {
        plan.chords.push_back({.keyCode = *key});
      } else {
        plan.missing.insert(*meaning);
      }
    }
    ++plan.characters;
  }
  return plan;
}

Typist::Step Typist::bindFor(const Plan& plan, const KeyboardMap& map) {
  if (unread_ && plan.missing.size() > spareKeys_.freeCount(map)) return {.blocker = Blocker::strokesUnread};
  spareKeys_.bind(map, plan.missing, plan.special);
  lastUse_ = currentTime();
  startIdleWatch();
  return {};
}

/// Does what it takes for the next step. False when there should be none.
bool Typist::resolve(Blocker blocker) {
  switch (blocker) {
    case Blocker::strokesUnread:
      // Better no text than a wrong one. A program that is left behind must not keep others from theirs.
      if (!waitUntilRead() && unread_->window == focus_) return false;
      unread_.reset();
      return true;
    case Blocker::mapUnknown:
      program_.waitUntilReady(focus_, currentTime() + noticingTime);
      return true;
    case Blocker::heldModifiers:
    case Blocker::noSpareKeys:
      std::this_thread::sleep_for(retryInterval);
      return true;
    case Blocker::none:
      return true;
    case Blocker::shortcuts:
    case Blocker::server:
      return false;
  }
  return false;
}

/// False when the program has not read its keys although it answers pings: it hangs.
bool Typist::waitUntilRead() {
  if (!unread_) return true;
  const bool isRead = program_.waitUntilReady(unread_->window, unread_->time + readingTime);
  if (isRead) unread_.reset();
  return isRead;
}

bool Typist::hasWaited(std::chrono::seconds timeout) const {
  return currentTime() - lastProgress_ > timeout;
}

void Typist::startIdleWatch() {
  if (std::exchange(isWatching_, true)) return;
  try {
    idleWatch_ = std::jthread([this](const std::stop_token& stopped) { watchIdleness(stopped); });
  } catch (const std::system_error&) {
    isWatching_ = false;  // the next use may have more luck; if none comes, the end gives them back
  }
}

void Typist::watchIdleness(const std::stop_token& stopped) {
  std::condition_variable_any pause;
  std::unique_lock lock(mutex_);
  while (currentTime() < lastUse_ + idleTime && !stopped.stop_requested()) {
    pause.wait_until(lock, stopped, lastUse_ + idleTime, [] { return false; });
  }
  if (!stopped.stop_requested()) giveSpareKeysBack();
  isWatching_ = false;
}

void Typist::giveSpareKeysBack() {
  waitUntilRead();
  unread_.reset();
  program_.rest();
  if (!spareKeys_.isAnyBound()) return;
  const ServerGrab grab(connection_);
  const auto map = keyboard_.readMap();
  if (map) spareKeys_.unbindAll(*map);
}

}  // namespace orvel
