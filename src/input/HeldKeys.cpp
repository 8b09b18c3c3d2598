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

bool HeldKeys::releaseAll() {
  const auto held = std::exchange(down_, {});
  for (const std::uint16_t keyCode : held) events_.post(KeyEvent{.keyCode = keyCode, .down = false});
  return !held.empty();
}

}  // namespace orvel
