#pragma once

#include "desktop/Timeout.hpp"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// Another program on the desktop: a window that covers it, has the keyboard, and writes down all input that it gets.
///
/// Threads: one at a time.
class X11Witness {
 public:
  enum class Kind { motion, buttonDown, buttonUp, keyDown, keyUp };

  struct Input {
    Kind kind = Kind::motion;
    int detail = 0;  ///< Button or X key code; 0 for motion.
    int x = 0;
    int y = 0;
    unsigned state = 0;  ///< Modifiers and buttons that were down before.
  };

  using Inputs = std::vector<Input>;

  /// Opens the window and waits until it has the keyboard. Throws when it cannot.
  explicit X11Witness(const std::string& display);
  ~X11Witness();
  X11Witness(const X11Witness&) = delete;
  X11Witness& operator=(const X11Witness&) = delete;

  /// All that has come since the last `forget`.
  const Inputs& inputs() const { return inputs_; }
  void forget() { inputs_.clear(); }

  /// Waits until what has come pleases `isEnough`. False when it does not in time, or the server goes.
  bool waitFor(const std::function<bool(const Inputs&)>& isEnough, Milliseconds limit = timeout);

  /// The same, for a number of inputs.
  bool waitForCount(std::size_t count, Milliseconds limit = timeout);

  /// Takes all that the server has sent by now, without waiting for more.
  const Inputs& catchUp();

  /// Where the server has the pointer.
  std::pair<int, int> pointer();

  /// Moves the server's pointer by XTEST, as any program may.
  void movePointer(std::int16_t x, std::int16_t y);

  /// Sets a property of the root window, as a window manager does.
  void setRootProperty(const std::string& name, std::uint32_t value);

  /// Has the server serve nobody else, until it is let go.
  void holdServer();
  void letGoServer();

 private:
  void openWindow();
  void takeKeyboard();
  void take(const xcb_generic_event_t& event);

  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t window_ = 0;
  Inputs inputs_;
};

/// For the messages of failed tests.
std::ostream& operator<<(std::ostream& out, const X11Witness::Input& input);

}  // namespace orvel
