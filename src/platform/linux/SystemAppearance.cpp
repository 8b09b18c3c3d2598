#include "platform/linux/SystemAppearance.hpp"

#include "platform/linux/MainThreadCall.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"
#include "platform/linux/appearance/PortalColorScheme.hpp"

#include <utility>

namespace orvel {

SystemAppearance::SystemAppearance(const X11Connection& connection)
    : settings_(connection), told_(read()), change_(std::make_shared<MainThreadCall>([this] {
        if (changed_) changed_();
      })) {}

SystemAppearance::~SystemAppearance() {
  change_->cancel();
}

std::optional<bool> SystemAppearance::isDark() const {
  if (const auto said = portal_ ? portal_->isDark() : std::nullopt) return said;
  const std::string theme = told_.withLock([](const Told& told) { return told.theme; });
  return theme.empty() ? std::nullopt : std::optional(isDarkTheme(theme));
}

std::optional<DesktopFont> SystemAppearance::font() const {
  return parseFontDescription(told_.withLock([](const Told& told) { return told.font; }));
}

void SystemAppearance::observe(std::function<void()> changed) {
  changed_ = std::move(changed);
  portal_ = std::make_unique<PortalColorScheme>([this] { changed_(); });
}

void SystemAppearance::handle(const xcb_generic_event_t& event) {
  if (!settings_.tellsOfChange(event)) return;
  const Told now = read();
  const Told before = told_.withLock([&](Told& told) { return std::exchange(told, now); });
  if (now != before) change_->ask();
}

SystemAppearance::Told SystemAppearance::read() {
  auto settings = settings_.read();
  return {.theme = std::move(settings["Net/ThemeName"]), .font = std::move(settings["Gtk/FontName"])};
}

}  // namespace orvel
