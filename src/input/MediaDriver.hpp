#pragma once

#include <cstdint>
#include <optional>

namespace orvel {

class EventPoster;

/// Presses the keys for sound, brightness and playback. `EventPoster::flush` is left to the caller. Threads: any.
class MediaDriver {
 public:
  /// The keys by the system's numbers for them.
  enum class Code : std::uint8_t {
    volumeUp = 0,
    volumeDown = 1,
    brightnessUp = 2,
    brightnessDown = 3,
    mute = 7,
    playPause = 16,
    next = 17,
    previous = 18,
    fastForward = 19,
    rewind = 20,
  };

  /// The key of that number, or nothing when there is none.
  static std::optional<Code> code(std::uint8_t rawValue);

  explicit MediaDriver(EventPoster& events);

  /// One press and release. What the desktop refuses is skipped.
  void press(Code code);

 private:
  EventPoster& events_;
};

}  // namespace orvel
