#pragma once

#include "input/InputEvent.hpp"

#include <cstdint>
#include <set>

namespace orvel {

class EventPoster;

/// Posts the key strokes of one phone and remembers which keys it holds down, so that none stays down when the phone
/// goes: a desktop would repeat it for ever.
///
/// Threads: one at a time. `EventPoster::flush` is left to the caller.
class HeldKeys {
 public:
  explicit HeldKeys(EventPoster& events);

  void post(const KeyEvent& event);

  /// Releases every key that is still down.
  void releaseAll();

 private:
  EventPoster& events_;
  std::set<std::uint16_t> down_;
};

}  // namespace orvel
