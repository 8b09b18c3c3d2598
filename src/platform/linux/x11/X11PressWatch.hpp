#pragma once

#include "ui/PressWatch.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace orvel {

class MainThreadCall;
class X11Connection;

/// The raw presses that the X server reports, which come whoever has the pointer.
///
/// Threads: the main thread, which waits for the server only while this is made; `handle` is called on that of the
/// connection.
class X11PressWatch final : public PressWatch {
 public:
  explicit X11PressWatch(const X11Connection& connection);
  ~X11PressWatch() override;
  X11PressWatch(const X11PressWatch&) = delete;
  X11PressWatch& operator=(const X11PressWatch&) = delete;

  void begin(std::function<void()> pressed) override;
  void end() override;

  /// Takes an event of the server.
  void handle(const xcb_generic_event_t& event) const;

 private:
  void select(std::uint32_t events) const;

  const X11Connection& connection_;
  const std::uint8_t opcode_;  // of the extension; 0 where the server cannot report them
  std::function<void()> pressed_;
  const std::shared_ptr<MainThreadCall> call_;
};

}  // namespace orvel
