#pragma once

#include "base/Guarded.hpp"
#include "input/EventPoster.hpp"
#include "platform/linux/x11/keyboard/Typist.hpp"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvel {

class X11Displays;
class X11Connection;

/// Posts input by XTEST, as if a second mouse and keyboard were plugged in.
///
/// A modifier flag holds the key of that modifier down for as long as the key it came with; command is Control, the
/// shortcut modifier of this desktop, and function is nothing. Modifiers that are down for other keys, or unwanted, are
/// lifted from the press of a key to its release, or until they are pressed anew. Wheels turn in notches; what is left
/// of one is kept, whichever phone turns next.
///
/// On Xwayland nothing is ever posted, nor sent to find out whether it could be: see `X11Connection::isXwayland`.
///
/// Threads: any. Only `pointerLocation` and text wait for the server. `handle` is for the thread of the connection.
class X11EventPoster final : public EventPoster, private KeyQueue {
 public:
  X11EventPoster(X11Connection& connection, const X11Displays& displays);

  bool post(const MouseEvent& event) override;
  bool post(const ScrollEvent& event) override;
  bool post(const KeyEvent& event) override;
  bool post(const SystemDefinedEvent& event) override;
  bool post(const TextEvent& event) override;
  bool tracksPointer() const override { return true; }
  std::optional<Point> pointerLocation() override;
  void flush() override;

  /// Ends the text that is being typed; no more is typed after that. Threads: any.
  void stopTyping() { typist_.stop(); }

  /// Takes what the server says.
  void handle(const xcb_generic_event_t& event) { typist_.handle(event); }

 private:
  struct Position {
    std::int16_t x;
    std::int16_t y;

    friend bool operator==(const Position&, const Position&) = default;
  };

  struct Key {
    bool isDown = false;             // as a key of its own
    std::uint8_t heldModifiers = 0;  // pressed with it, one bit each
    std::uint16_t holders = 0;       // itself, and the keys that it is held down for as a modifier
  };

  struct State {
    std::optional<Position> pointer;  // where a post or a query last found it
    std::uint64_t placements = 0;     // posts that placed the pointer
    bool isPointerKnown = false;      // found there in this batch
    bool isPointerUnflushed = false;
    bool isUnflushed = false;
    std::int64_t verticalRemainder = 0;  // pixels that do not make a notch yet
    std::int64_t horizontalRemainder = 0;
    std::array<Key, 256> keys;     // by X key code
    std::bitset<256> lifted;       // modifiers that are held but not down
    std::uint8_t liftedFor = 0;    // the key that was pressed without them
    std::uint64_t keyVersion = 0;  // another one with each key event
  };

  Held held() override;
  bool queueInOneGo(const std::vector<KeyChange>& changes, std::uint64_t version) override;

  bool canPost() const;
  void putPointer(State& state, Position target, bool always);
  void movePointer(State& state, Position delta);
  void turn(State& state, std::int64_t& remainder, std::int32_t pixels, std::uint8_t forward, std::uint8_t backward);
  void press(State& state, std::uint8_t keyCode, std::uint8_t modifiers);
  void release(State& state, std::uint8_t keyCode, bool staysDown);
  void liftModifiers(State& state, const KeyEvent& event, std::uint8_t keyCode);
  void setLifted(State& state, const std::bitset<256>& lifted);
  void holdModifiers(State& state, std::uint8_t modifiers);
  void letGoModifiers(State& state, std::uint8_t modifiers);
  void hold(State& state, std::uint8_t keyCode);
  void letGo(State& state, std::uint8_t keyCode);
  void queue(State& state, std::uint8_t type, std::uint8_t detail, Position position = {}) const;
  Position onScreen(Position position) const;

  X11Connection& connection_;
  const X11Displays& displays_;
  const bool reachesDesktop_;             // by XTEST
  const std::bitset<256> repeatingKeys_;  // by X key code
  Guarded<State> state_;
  Typist typist_;
};

}  // namespace orvel
