#include "input/HeldKeys.hpp"

#include "input/EventPoster.hpp"

#include <utility>

namespace orvel {

HeldKeys::HeldKeys(EventPoster& events) : events_(events) {}

void HeldKeys::post(const KeyEvent& event) {
  if (!events_.post(event)) return;
  if (event.down) {
    down_.insert(event.keyCode);
  } else {
    down_.erase(event.keyCode);
  }
}

void HeldKeys::releaseAll() {
  for (const std::uint16_t keyCode : std::exchange(down_, {}))
    events_.post(KeyEvent{.keyCode = keyCode, .down = false});
}

}  // namespace orvel
