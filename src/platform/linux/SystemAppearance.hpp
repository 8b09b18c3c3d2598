#pragma once

#include "platform/linux/appearance/DesktopTheme.hpp"
#include "ui/Appearance.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvel {

class MainThreadCall;
class PortalColorScheme;

/// What the settings portal says of light and dark, or else the name of the theme that the desktop publishes, as it
/// does its font.
///
/// Threads: the main thread, which waits for nobody once this is made.
class SystemAppearance final : public Appearance {
 public:
  /// The settings must not call their observer any more when this goes.
  explicit SystemAppearance(ThemeSettings& settings);
  ~SystemAppearance() override;
  SystemAppearance(const SystemAppearance&) = delete;
  SystemAppearance& operator=(const SystemAppearance&) = delete;

  std::optional<bool> isDark() const override;
  std::optional<DesktopFont> font() const override;
  void observe(std::function<void()> changed) override;

 private:
  ThemeSettings& settings_;
  std::function<void()> changed_;
  const std::shared_ptr<MainThreadCall> change_;
  std::unique_ptr<PortalColorScheme> portal_;  // made with the first observer
};

}  // namespace orvel
