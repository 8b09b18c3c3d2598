#pragma once

#include "platform/linux/capture/Cursor.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace orvel {

class X11Connection;

/// Tells where the cursor is and what it looks like, by XFixes.
///
/// Threads: one at a time; making it and `ask` wait for the server.
class CursorWatch {
 public:
  /// Null when the server does not tell of it.
  static std::unique_ptr<CursorWatch> start(const X11Connection& connection);

  /// Whether the event says that the cursor looks different now.
  bool tellsOfChange(const xcb_generic_event_t& event) const;

  /// Takes such an event.
  void shapeHasChanged() { shapeIsKnown_ = false; }

  /// The cursor now. Its image is asked for only when it has changed.
  const Cursor& ask();

 private:
  CursorWatch(const X11Connection& connection, std::uint8_t firstEvent);
  void askPlace();
  void askShape();

  const X11Connection& connection_;
  const std::uint8_t firstEvent_;
  bool shapeIsKnown_ = false;
  std::shared_ptr<const CursorShape> shape_;
  Cursor cursor_;
};

}  // namespace orvel
