#include "input/MediaDriver.hpp"

#include "input/EventPoster.hpp"

namespace orvel {
namespace {

constexpr std::uint64_t specialKeyFlags = 0xa00;  // the same for press and release; only data1 differs

}  // namespace

std::optional<MediaDriver::Code> MediaDriver::code(std::uint8_t rawValue) {
  switch (const auto code = static_cast<Code>(rawValue)) {
    case Code::volumeUp:
    case Code::volumeDown:
    case Code::brightnessUp:
    case Code::brightnessDown:
    case Code::mute:
    case Code::playPause:
    case Code::next:
    case Code::previous:
    case Code::fastForward:
    case Code::rewind:
      return code;
  }
  return std::nullopt;
}

MediaDriver::MediaDriver(EventPoster& events) : events_(events) {}

void MediaDriver::press(Code code) {
  for (const std::int64_t state : {auxiliaryKey::down, auxiliaryKey::up}) {
    const auto key = static_cast<std::int64_t>(code) << auxiliaryKey::typeShift;
    events_.post(SystemDefinedEvent{
        .flags = specialKeyFlags, .subtype = auxiliaryKey::subtype, .data1 = key | state, .data2 = -1});
  }
}

}  // namespace orvel
