#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/x11/WindowList.hpp"
#include "platform/linux/x11/X11ActivationTokens.hpp"
#include "platform/linux/x11/X11Properties.hpp"
#include "ui/Foreground.hpp"

#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <vector>

namespace orvel {

class X11Connection;

/// The foreground as the window manager has it, or the server where there is none. The toolkit shows its windows by a
/// connection of its own, so a window may be shown only after it was to be brought; then it is brought when it is.
///
/// Threads: the main thread for `keepOutOfList`, any for the rest; none waits for the server but that of the
/// connection, on which `handle` is called.
class X11Foreground final : public Foreground {
 public:
  X11Foreground(const X11Connection& connection, const X11Atoms& atoms);

  /// Desktops here list windows.
  void becomeAccessory() override {}
  void keepOutOfList(const ToolkitWindow& window) override;
  void bring(const ToolkitWindow& window, const std::string& activationToken) override;
  Seconds settlingTime() const override { return {}; }
  void finishStart(const std::string& activationToken) override;

  /// Takes an event of the server, and brings the window when that is possible now.
  void handle(const xcb_generic_event_t& event);

 private:
  struct Wish {
    xcb_window_t window = XCB_WINDOW_NONE;
    std::string token;

    friend bool operator==(const Wish&, const Wish&) = default;
  };

  enum class Way { none, byWindowManager, byServer };

  void askForTime() const;
  bool mayBeShownNow(const xcb_generic_event_t& event) const;
  void bringAt(xcb_timestamp_t time);
  Way wayFor(xcb_window_t window) const;
  std::vector<std::uint32_t> numbersOf(xcb_window_t window, xcb_atom_t name) const;
  bool canWindowManagerActivate() const;

  const X11Connection& connection_;
  const X11Atoms& atoms_;
  const WindowCommands commands_;
  const StartupNotice notice_;
  const xcb_window_t clock_;  // never shown; the server dates its changes
  Guarded<std::optional<Wish>> wish_;
};

}  // namespace orvel
