#pragma once

#include "base/Clock.hpp"
#include "base/Guarded.hpp"
#include "input/EventPoster.hpp"
#include "platform/macos/PointerTrail.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace orvel {

/// Declares to the system that somebody uses this Mac, as events that a program posts do not: it wakes a display that
/// sleeps, and puts off its sleep.
///
/// Threads: any. The system, which is another process, is asked on a thread of its queues.
class UserActivity {
 public:
  explicit UserActivity(const Clock& clock) : clock_(clock) {}

  /// Called for each input event but a release. Returns at once. The system is asked at most every five seconds and not
  /// before it has answered; a failure is tried again after as long.
  void declare();

 private:
  struct State {
    std::optional<Seconds> declaredAt;
    bool isRenewing = false;
    std::uint32_t assertion = 0;  ///< What the system knows the activity by; 0 for none yet.
  };

  /// Whether it is time to renew the assertion, which is then the caller's to do.
  bool takeDue();

  static void renew(Guarded<State>& guarded);

  const Clock& clock_;
  const std::shared_ptr<Guarded<State>> state_ = std::make_shared<Guarded<State>>();
};

/// Posts input at the HID event tap, where that of the mouse and the keyboard enters. Every event is sent at once.
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
  bool tracksPointer() const override { return true; }
  std::optional<Point> pointerLocation() override;
  void flush() override {}

 private:
  UserActivity activity_;
  PointerTrail trail_;
};

}  // namespace orvel
