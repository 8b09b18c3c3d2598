#include "platform/linux/SystemAppearance.hpp"

#include "platform/linux/MainThreadCall.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"
#include "platform/linux/appearance/PortalColorScheme.hpp"

#include <utility>

namespace orvel {

SystemAppearance::SystemAppearance(ThemeSettings& settings)
    : settings_(settings), theme_(settings.read()), change_(std::make_shared<MainThreadCall>([this] {
        if (changed_) changed_();
      })) {
  settings_.observe([this] { readAgain(); });
}

SystemAppearance::~SystemAppearance() {
  change_->cancel();
}

std::optional<bool> SystemAppearance::isDark() const {
  if (const auto said = portal_ ? portal_->isDark() : std::nullopt) return said;
  const std::string name = theme_.withLock([](const DesktopTheme& theme) { return theme.name; });
  return name.empty() ? std::nullopt : std::optional(isDarkTheme(name));
}

std::optional<DesktopFont> SystemAppearance::font() const {
  return parseFontDescription(theme_.withLock([](const DesktopTheme& theme) { return theme.font; }));
}

void SystemAppearance::observe(std::function<void()> changed) {
  changed_ = std::move(changed);
  portal_ = std::make_unique<PortalColorScheme>([this] { changed_(); });
}

void SystemAppearance::readAgain() {
  const DesktopTheme now = settings_.read();
  const DesktopTheme before = theme_.withLock([&](DesktopTheme& theme) { return std::exchange(theme, now); });
  if (now.name != before.name || now.font != before.font) change_->ask();
}

}  // namespace orvel
