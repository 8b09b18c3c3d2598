#pragma once

#include "base/Guarded.hpp"
#include "input/EventPoster.hpp"

#include <cstdint>
#include <map>
#include <vector>

namespace orvel {

class EventPoster;

/// Posts the key strokes of all phones and remembers which of them hold a key down. It goes up when the last one lets
/// go of it, and none stays down when its phone goes: a desktop would repeat it for ever.
///
/// Threads: any. `EventPoster::flush` is left to the caller.
class HeldKeys {
 public:
  /// One phone among the others.
  using Phone = std::uint64_t;

  explicit HeldKeys(EventPoster& events);

  /// A phone that holds nothing yet.
  Phone addPhone();

  /// Posts a press, or the release of a key. It stays down while another phone holds it. No press is modified by what
  /// only other phones hold; what the phone itself holds counts. What the desktop refuses changes nothing.
  void post(Phone phone, const KeyEvent& event);

  /// Lets go of every key that the phone still holds.
  void releaseAll(Phone phone);

  /// The same for all phones.
  void releaseAll();

 private:
  using Holders = std::vector<Phone>;  // in the order in which they pressed it last

  struct State {
    Phone phones = 0;  // that there have been
    std::map<std::uint16_t, Holders> keys;
  };

  void press(State& state, Phone phone, KeyEvent event);
  bool release(State& state, Phone phone, KeyEvent event);
  static void forget(State& state, Phone phone, std::uint16_t keyCode);

  EventPoster& events_;
  Guarded<State> state_;
};

}  // namespace orvel
