#pragma once

#include "catalog/Workspace.hpp"
#include "platform/linux/appearance/IconThemeChoice.hpp"
#include "platform/linux/applications/Launcher.hpp"
#include "platform/linux/applications/ProgramList.hpp"
#include "platform/linux/icons/IconThemes.hpp"

#include <sys/resource.h>

#include <functional>

namespace orvel {

class ActivationTokens;
class DesktopEntries;
class DesktopWindows;
class ThemeSettings;

/// The user's programs by the windows that the desktop reports, each known by its desktop entry where it has one.
///
/// Threads: any; the observer is called on the thread of the backend.
class SystemWorkspace final : public Workspace {
 public:
  /// Programs that are started get `openFiles` as their limit of open files.
  SystemWorkspace(DesktopWindows& windows, ActivationTokens& tokens, ThemeSettings& theme, DesktopEntries& entries,
                  const DataFolders& folders, const rlimit& openFiles);

  void observeActivation(std::function<void()> handler) override;
  std::optional<std::vector<RunningApplication>> runningApplications() override;
  std::optional<std::string> location(const std::string& identifier) override;
  std::optional<std::vector<std::uint8_t>> icon(const std::string& path, double size) override;
  void activate(const RunningApplication& application) override;
  void terminate(const RunningApplication& application) override;
  void open(const std::string& path) override;

 private:
  std::vector<WindowID> windowsOf(const RunningApplication& application) const;

  DesktopWindows& windows_;
  DesktopEntries& entries_;
  const ProgramList programs_;
  Launcher launcher_;
  const IconThemeChoice themeChoice_;
  IconThemes themes_;
};

}  // namespace orvel
