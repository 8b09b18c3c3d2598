#include "input/KeyboardDriver.hpp"

#include "base/Clock.hpp"
#include "base/UTF8.hpp"
#include "input/EventPoster.hpp"

#include <cstddef>

namespace orvel {
namespace {

constexpr std::size_t charactersInChunk = 16;
constexpr Seconds pause{0.002};

}  // namespace

KeyboardDriver::KeyboardDriver(EventPoster& events, Clock& clock) : events_(events), clock_(clock) {}

void KeyboardDriver::type(std::string_view text) {
  for (const std::string_view chunk : chunked(text, charactersInChunk)) {
    if (stopped_) return;
    events_.post(TextEvent{.text = utf16(chunk)});
    clock_.sleep(pause);
  }
}

}  // namespace orvel
