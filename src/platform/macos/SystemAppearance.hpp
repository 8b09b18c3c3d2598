#pragma once

#include "ui/Appearance.hpp"

#include <memory>

namespace orvel {

/// The look of the application object, which follows that of the desktop. Threads: the main thread.
class SystemAppearance final : public Appearance {
 public:
  SystemAppearance();
  ~SystemAppearance() override;
  SystemAppearance(const SystemAppearance&) = delete;
  SystemAppearance& operator=(const SystemAppearance&) = delete;

  std::optional<bool> isDark() const override;
  /// Nothing: the toolkit's own font is the system's, in its 13 points, and has no name that a program may ask for.
  std::optional<DesktopFont> font() const override { return std::nullopt; }
  void observe(std::function<void()> changed) override;

 private:
  struct Watch;

  std::unique_ptr<Watch> watch_;
};

}  // namespace orvel
