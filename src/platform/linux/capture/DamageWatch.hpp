#pragma once

#include "platform/linux/capture/PixelRect.hpp"

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdint>
#include <memory>

namespace orvel {

class X11Connection;

/// Tells that something was drawn on the screen, and where, by XDamage. The server tells once, and then again only
/// after it was taken.
///
/// Threads: one at a time; making it and `take` wait for the server.
class DamageWatch {
 public:
  /// Null when the server cannot tell.
  static std::unique_ptr<DamageWatch> start(const X11Connection& connection);

  /// Whether the event says that something was drawn.
  bool tellsOfDamage(const xcb_generic_event_t& event) const;

  /// The smallest rectangle within `area` around what was drawn there since the last call.
  PixelRect take(const PixelRect& area);

 private:
  DamageWatch(const X11Connection& connection, std::uint8_t firstEvent);

  const X11Connection& connection_;
  const std::uint8_t firstEvent_;
  const xcb_damage_damage_t damage_;
  const xcb_xfixes_region_t drawn_;
  const xcb_xfixes_region_t area_;
};

}  // namespace orvel
