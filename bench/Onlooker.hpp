#pragma once

#include "base/Geometry.hpp"

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace orvel::bench {

/// A person before the screen: sees when a part of it looks otherwise, and has a mouse and a keyboard. The server
/// reports everything that is drawn, so looking costs the programs nothing while they draw nothing.
///
/// Threads: one at a time.
class Onlooker {
 public:
  using Moment = std::chrono::steady_clock::time_point;
  enum class Key : std::uint8_t { escape = 9, tab = 23, space = 65 };

  /// How long a part of the screen must not change to be taken for finished.
  static constexpr std::chrono::milliseconds stillness{150};

  explicit Onlooker(const std::string& display);
  ~Onlooker();
  Onlooker(const Onlooker&) = delete;
  Onlooker& operator=(const Onlooker&) = delete;

  /// Looks at that part of the screen from now on.
  void lookAt(const Rect& part);

  /// Waits until it looks otherwise and stands still; the moment from which on it was seen to look so. Throws when it
  /// does not change.
  Moment seeNewLook();

  void click(const Point& place);
  void press(Key key);

 private:
  using Pixels = std::vector<std::uint8_t>;

  bool waitForDrawing(std::chrono::milliseconds limit);
  bool takeDrawings();
  Pixels look();
  void fake(std::uint8_t type, std::uint8_t detail, const Point& place = {});

  xcb_connection_t* const connection_;
  const xcb_window_t root_;
  std::uint8_t drawn_ = 0;  // the number of the event
  Rect part_;
  Pixels seen_;
};

}  // namespace orvel::bench
