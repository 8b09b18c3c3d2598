#pragma once

#include "input/InputEvent.hpp"

#include <optional>

namespace orvel {

/// Posts synthetic input into the desktop. Events take effect in the order of posting. Threads: any.
class EventPoster {
 public:
  virtual ~EventPoster() = default;

  /// Posts one event; it may wait until the next `flush`. False when the desktop has no such event or cannot be
  /// reached: then nothing was posted.
  virtual bool post(const MouseEvent& event) = 0;
  virtual bool post(const ScrollEvent& event) = 0;
  virtual bool post(const KeyEvent& event) = 0;
  virtual bool post(const SystemDefinedEvent& event) = 0;

  /// The same for a whole stroke, all of it or nothing, but not for the input path: it may last until the programs of
  /// the desktop are ready to take the text, for seconds when they hang. It needs no `flush`.
  virtual bool post(const TextEvent& event) = 0;

  /// Whether the desktop reports the pointer's position at any time and at little cost. Where it does not, mouse events
  /// carry no position, and `pointerLocation` is asked for a snap alone.
  virtual bool tracksPointer() const = 0;

  /// Where the pointer is, events posted but not yet flushed included. Nothing when the desktop does not say.
  virtual std::optional<Point> pointerLocation() = 0;

  /// Sends the posted events on their way. Called once for a batch of events; returns without waiting for them.
  virtual void flush() = 0;
};

}  // namespace orvel
