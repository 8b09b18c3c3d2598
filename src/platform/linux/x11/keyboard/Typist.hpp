#pragma once

#include "platform/linux/keyboard/KeyPositions.hpp"
#include "platform/linux/x11/keyboard/CharacterKeys.hpp"
#include "platform/linux/x11/keyboard/FocusedProgram.hpp"
#include "platform/linux/x11/keyboard/Keyboard.hpp"
#include "platform/linux/x11/keyboard/SpareKeys.hpp"

#include <atomic>
#include <bitset>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string_view>
#include <thread>
#include <vector>

namespace orvel {

class X11Connection;

/// The way of the keys to the server, which all phones share. Threads: any.
class KeyQueue {
 public:
  struct Held {
    std::bitset<256> keys;      ///< Down by our doing, by X key code.
    std::uint64_t version = 0;  ///< Another one after each key that went this way.
  };

  virtual ~KeyQueue() = default;

  virtual Held held() = 0;

  /// Queues the changes with nothing in between. They leave all keys as they were. False, and nothing is queued, when
  /// other keys went this way since `version`.
  virtual bool queueInOneGo(const std::vector<KeyChange>& changes, std::uint64_t version) = 0;
};

/// Types text into the program that has the keyboard, by the keys of the layout of the moment, and by spare keys for
/// what that layout lacks.
///
/// What the keys mean is read anew for each piece of a text, and stays true until the piece is on its way, for the
/// server serves nobody else in between. The program must have fetched that meaning before, and a spare key changes its
/// own only when the program has dealt with the old one.
///
/// Threads: `handle` is for the thread of the connection, all else for any. Spare keys are given back by a thread of
/// its own, which ends a moment after the last text.
class Typist {
 public:
  Typist(const X11Connection& connection, KeyQueue& keys);
  ~Typist();
  Typist(const Typist&) = delete;
  Typist& operator=(const Typist&) = delete;

  /// Types a text, after those of other threads, and returns when its last key is on its way. False when the server has
  /// gone or cannot type.
  bool type(std::u16string_view text);

  /// Ends the text that is being typed, and all further ones before their first character. Threads: any.
  void stop();

  void handle(const xcb_generic_event_t& event) { program_.handle(event); }

 private:
  using Time = FocusedProgram::Time;

  enum class Blocker { none, server, heldModifiers, shortcuts, strokesUnread, mapUnknown, noSpareKeys };

  /// What became of the next characters of a text.
  struct Step {
    std::size_t characters = 0;  // that are done with
    Blocker blocker = Blocker::none;
  };

  /// What makes capitals of the letters on a key.
  struct CapitalKeys {
    bool capsLock = false;
    bool shift = false;  // held by somebody else
  };

  /// Modifiers that are down, by who holds them.
  struct ModifierState {
    std::vector<std::uint8_t> ownKeys;  // ours, which are let go while text is typed
    KeyboardMap::Modifiers foreign = 0;
  };

  struct Plan {
    std::vector<Chord> chords;
    std::size_t characters = 0;
    SpareKeys::Meanings special;  // needed from spare keys
    SpareKeys::Meanings missing;  // of these, not there yet
  };

  /// Strokes of spare keys that the program may not have read yet.
  struct Strokes {
    xcb_window_t window = XCB_NONE;
    Time time;
  };

  /// The map that a program has fetched, unless it has changed since.
  struct KnownMap {
    xcb_window_t window = XCB_NONE;
    KeyboardMap map;
  };

  Step typeSome(std::u32string_view text);
  static ModifierState modifierStateOf(const Keyboard::Reading& reading, const KeyQueue::Held& held);
  bool isBlockedByModifiers(const Keyboard::Reading& reading, const ModifierState& state);
  Plan planFor(std::u32string_view text, const CharacterKeys& keys, const KeyboardMap& map, CapitalKeys capitals);
  bool isKnown(const KeyboardMap& map) const;
  Step makeKnown(KeyboardMap map, const CharacterKeys& keys, const KeyQueue::Held& held);
  Step strike(const Plan& plan, const ModifierState& state, const KeyQueue::Held& held, KeyboardMap::Modifiers locked);
  Step bindFor(const Plan& plan, const KeyboardMap& map);
  bool resolve(Blocker blocker);
  bool waitUntilRead();
  bool hasWaited(std::chrono::seconds timeout) const;
  void startIdleWatch();
  void watchIdleness(const std::stop_token& stopped);
  void giveSpareKeysBack();

  const X11Connection& connection_;
  KeyQueue& keys_;
  const Keyboard keyboard_;
  FocusedProgram program_;

  std::mutex mutex_;  // held for a whole text: two are not mixed
  SpareKeys spareKeys_;
  std::optional<Strokes> unread_;
  std::optional<KnownMap> known_;
  xcb_window_t focus_ = XCB_NONE;         // of the last step
  KeyboardMap::Modifiers tolerated_ = 0;  // that somebody holds longer than we wait
  Time lastProgress_;                     // of the text that is being typed
  Time lastUse_;                          // of spare keys
  bool isWithoutSpareKeys_ = false;       // has been for longer than we wait
  bool isWatching_ = false;
  std::atomic<bool> isStopped_ = false;
  std::jthread idleWatch_;
};

}  // namespace orvel
