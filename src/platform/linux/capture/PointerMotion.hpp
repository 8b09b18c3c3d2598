#pragma once

#include <xcb/sync.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace orvel {

class X11Connection;

/// Has the server tell whenever the pointer moves: by XInput what devices do, and by the time for which it has stood
/// still what programs do. A mouse may move it a thousand times a second, so this is on only while there is need of it.
///
/// Threads: one at a time; making it waits for the server.
class PointerMotion {
 public:
  /// Null when the server cannot tell.
  static std::unique_ptr<PointerMotion> find(const X11Connection& connection);

  /// Has it tell, or be quiet again.
  void tell(bool wanted);

  /// Whether the event says that the pointer has moved.
  bool tellsOfMotion(const xcb_generic_event_t& event) const;

 private:
  PointerMotion(const X11Connection& connection, std::uint8_t opcode);
  void tellOfDevices(bool wanted);
  void tellOfEndOfStillness(bool wanted);

  const X11Connection& connection_;
  const std::uint8_t opcode_;
  const xcb_sync_counter_t stillness_;  // none when the server does not measure it
  const xcb_sync_alarm_t alarm_;
};

}  // namespace orvel
