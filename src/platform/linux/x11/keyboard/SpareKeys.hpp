#pragma once

#include "platform/linux/x11/keyboard/Keyboard.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

namespace orvel {

class X11Connection;

/// Keys without a meaning, which get one for a time.
///
/// What is bound is written down at the root window, so that a program that ends without undoing it leaves a trace that
/// the next one follows. A window of its own shows that its writer is alive.
///
/// Threads: one at a time. All operations that take a map are called while the server is grabbed and the map is true.
class SpareKeys {
 public:
  using Levels = KeyboardMap::Levels;
  using Meanings = std::set<Levels>;

  SpareKeys(const X11Connection& connection, const Keyboard& keyboard);

  /// Undoes what others have left who ended without doing so. Waits for the server, which must not be grabbed.
  void undoLeftovers() const;

  bool isAnyBound() const { return !bindings_.empty(); }

  /// How many meanings can be had at once, and how many more without an end to the present ones.
  std::size_t capacity(const KeyboardMap& map) const;
  std::size_t freeCount(const KeyboardMap& map) const;

  /// The key of that meaning, or nothing. It is then the one that was used last.
  std::optional<std::uint8_t> use(const Levels& meaning);

  /// Gives keys these meanings, and takes those away that were used the longest ago, but none of `kept`.
  void bind(const KeyboardMap& map, const Meanings& added, const Meanings& kept);

  /// Forgets what a new layout has wiped away.
  void forgetLost(const KeyboardMap& map);

  /// Takes all meanings away again.
  void unbindAll(const KeyboardMap& map);

 private:
  struct Binding {
    std::uint8_t keyCode = 0;
    Levels meaning{};
  };

  struct Note {
    xcb_window_t writer = XCB_NONE;
    std::uint32_t keyCode = 0;
    Levels meaning{};
  };

  std::vector<std::uint8_t> freeKeys(const KeyboardMap& map) const;
  std::vector<Note> readNotes() const;
  void writeNotes(const std::vector<Note>& notes) const;
  void noteBindings() const;
  bool isAlive(xcb_window_t writer) const;

  const X11Connection& connection_;
  const Keyboard& keyboard_;
  const xcb_atom_t notesName_;
  const xcb_window_t sign_;        // of life
  std::vector<Binding> bindings_;  // that used the longest ago first
};

}  // namespace orvel
