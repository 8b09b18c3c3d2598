#pragma once

#include "input/EventPoster.hpp"
#include "platform/macos/events/PointerTrail.hpp"
#include "platform/macos/events/UserActivity.hpp"

namespace orvel {

/// Posts input where that of the mouse and the keyboard enters the system. Every event is sent at once.
///
/// A text that is too long for one event goes out as several strokes, each released before the next is pressed.
///
/// A display that sleeps wakes for it, but not for a release, which may be that of a phone that leaves. The pointer is
/// where it was put last, even while the system does not say so yet.
///
/// Threads: any.
class SystemEventPoster final : public EventPoster {
 public:
  /// The clock must outlive it.
  explicit SystemEventPoster(const Clock& clock) : activity_(clock), trail_(clock) {}

  bool post(const MouseEvent& event) override;
  bool post(const ScrollEvent& event) override;
  bool post(const KeyEvent& event) override;
  bool post(const SystemDefinedEvent& event) override;
  bool post(const TextEvent& event) override;
  std::optional<Point> pointerLocation() override;
  void flush() override {}

 private:
  UserActivity activity_;
  PointerTrail trail_;
};

}  // namespace orvel
