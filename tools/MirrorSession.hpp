#pragma once

#include "tools/MirrorWish.hpp"
#include "tools/PhoneClient.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvel::phone {

/// How large the pictures are, in pixels.
struct MirrorSize {
  int width = 0;
  int height = 0;

  friend bool operator==(const MirrorSize&, const MirrorSize&) = default;
};

/// One picture of the host's screen. Threads: as a value.
class MirrorFrame {
 public:
  /// The frame that a message is, or what keeps it from being one.
  static Result<MirrorFrame> from(HostMessage message);

  /// The whole JPEG. It begins and ends as one does; what is between is as the host sent it.
  std::string_view jpeg() const { return std::string_view(message_.payload).substr(1); }

  /// When the whole of it had arrived.
  const Arrival& arrival() const { return message_.arrival; }

 private:
  explicit MirrorFrame(HostMessage message) : message_(std::move(message)) {}

  HostMessage message_;
};

/// The host's screen as a connected and paired phone sees it, from `start` to `stop`.
///
/// Threads: one at a time, the phone's.
class MirrorSession {
 public:
  explicit MirrorSession(PhoneClient& phone) : phone_(phone) {}

  /// Asks for the screen. Denied with the host's reason when it does not show it.
  Result<MirrorSize> start(const MirrorWish& wish, Seconds timeout);

  /// The next frame; what else the host says is dropped. A frame that is none is `unexpected`, and others may follow.
  Result<MirrorFrame> next(Seconds timeout);

  /// Ends the mirror, and waits until the host has heard it. Frames that come meanwhile are dropped.
  Failure stop(Seconds timeout);

 private:
  PhoneClient& phone_;
  std::optional<HostMessage> early_;
};

}  // namespace orvel::phone
