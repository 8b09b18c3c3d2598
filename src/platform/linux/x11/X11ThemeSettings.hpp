#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>

namespace orvel {

class X11Connection;

/// The theme among the XSETTINGS, which the owner of a selection of the X server publishes to all programs.
///
/// Threads: any; making it waits for the server. `handle` is called on the thread of the connection, reads the settings
/// and calls the observer there.
class X11ThemeSettings final : public ThemeSettings {
 public:
  explicit X11ThemeSettings(const X11Connection& connection);

  DesktopTheme theme() const override;
  void observe(std::function<void()> handler) override;

  /// Takes an event of the server.
  void handle(const xcb_generic_event_t& event);

 private:
  DesktopTheme read();
  bool isChange(const xcb_generic_event_t& event) const;

  const X11Connection& connection_;
  const xcb_atom_t selection_;     // whose owner publishes them
  const xcb_atom_t announcement_;  // by which a new owner makes itself known
  xcb_window_t manager_ = XCB_WINDOW_NONE;
  Guarded<DesktopTheme> theme_;
  Guarded<std::function<void()>> handler_;
};

/// The texts among settings in the form in which they are published. What is damaged ends it.
std::map<std::string, std::string> parseXSettings(std::span<const std::uint8_t> bytes);

}  // namespace orvel
