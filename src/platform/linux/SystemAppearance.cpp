#include "platform/linux/SystemAppearance.hpp"

#include "platform/linux/MainThreadCall.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"
#include "platform/linux/appearance/PortalColorScheme.hpp"

#include <utility>

namespace orvel {

SystemAppearance::SystemAppearance(ThemeSettings& settings)
    : settings_(settings), change_(std::make_shared<MainThreadCall>([this] {
        if (changed_) changed_();
      })) {
  settings_.observe([change = change_] { change->ask(); });
}

SystemAppearance::~SystemAppearance() {
  change_->cancel();
}

std::optional<bool> SystemAppearance::isDark() const {
  if (const auto said = portal_ ? portal_->isDark() : std::nullopt) return said;
  const std::string name = settings_.theme().name;
  return name.empty() ? std::nullopt : std::optional(isDarkTheme(name));
}

std::optional<DesktopFont> SystemAppearance::font() const {
  return parseFontDescription(settings_.theme().font);
}

void SystemAppearance::observe(std::function<void()> changed) {
  changed_ = std::move(changed);
  portal_ = std::make_unique<PortalColorScheme>([this] { changed_(); });
}

}  // namespace orvel
