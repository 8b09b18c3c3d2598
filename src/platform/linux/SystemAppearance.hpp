#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/x11/XSettingsWatch.hpp"
#include "ui/Appearance.hpp"

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvel {

class MainThreadCall;
class PortalColorScheme;
class X11Connection;

/// What the settings portal says of light and dark, or else the name of the theme that the desktop tells all programs
/// by the X server, as it tells them its font.
///
/// Threads: the main thread, which waits for nobody once this is made; `handle` is called on that of the connection.
class SystemAppearance final : public Appearance {
 public:
  explicit SystemAppearance(const X11Connection& connection);
  ~SystemAppearance() override;
  SystemAppearance(const SystemAppearance&) = delete;
  SystemAppearance& operator=(const SystemAppearance&) = delete;

  std::optional<bool> isDark() const override;
  std::optional<DesktopFont> font() const override;
  void observe(std::function<void()> changed) override;

  /// Takes an event of the server, and looks again when it tells of other settings.
  void handle(const xcb_generic_event_t& event);

 private:
  struct Told {
    std::string theme;
    std::string font;

    friend bool operator==(const Told&, const Told&) = default;
  };

  Told read();

  XSettingsWatch settings_;
  Guarded<Told> told_;
  std::function<void()> changed_;
  const std::shared_ptr<MainThreadCall> change_;
  std::unique_ptr<PortalColorScheme> portal_;  // once somebody wants to know
};

}  // namespace orvel
