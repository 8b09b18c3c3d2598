#pragma once

#include <atomic>
#include <string_view>

namespace orvel {

class Clock;
class EventPoster;

/// Types text of any script into the program that has the keyboard, whatever the layout is.
///
/// Threads: any; two texts at once are mixed piece by piece.
class KeyboardDriver {
 public:
  KeyboardDriver(EventPoster& events, Clock& clock);

  /// Types `text`, which is UTF-8, in pieces of 16 characters with a pause of 2 ms after each. Returns when the last
  /// one has been posted. Pieces that the desktop refuses are skipped.
  void type(std::string_view text);

  /// Has texts that are being typed end after their current piece, and all further ones before their first.
  void stop() { stopped_ = true; }
  bool isStopped() const { return stopped_; }

 private:
  EventPoster& events_;
  Clock& clock_;
  std::atomic<bool> stopped_ = false;
};

}  // namespace orvel
