#pragma once

#include "base/Guarded.hpp"
#include "catalog/Workspace.hpp"
#include "platform/linux/applications/Launcher.hpp"
#include "platform/linux/applications/ProgramList.hpp"
#include "platform/linux/icons/IconThemeChoice.hpp"
#include "platform/linux/icons/IconThemes.hpp"
#include "platform/linux/x11/ServerTime.hpp"
#include "platform/linux/x11/StartupNotice.hpp"
#include "platform/linux/x11/WindowCommands.hpp"
#include "platform/linux/x11/WindowList.hpp"
#include "platform/linux/x11/X11Atoms.hpp"

#include <sys/resource.h>
#include <xcb/xcb.h>

#include <functional>

namespace orvel {

class DesktopEntries;
class X11Connection;

/// The user's programs as the window manager tells of them by properties of windows, each known by its desktop entry
/// where it has one.
///
/// Threads: any; `handle` is called on the thread of the connection and calls the observer there.
class SystemWorkspace final : public Workspace {
 public:
  /// Programs that are started get `openFiles` as their limit of open files.
  SystemWorkspace(X11Connection& connection, DesktopEntries& entries, const DataFolders& folders,
                  const rlimit& openFiles);

  void observeActivation(std::function<void()> handler) override;
  std::optional<std::vector<RunningApplication>> runningApplications() override;
  std::optional<std::string> location(const std::string& identifier) override;
  std::optional<std::vector<std::uint8_t>> icon(const std::string& path, double size) override;
  void activate(const RunningApplication& application) override;
  void terminate(const RunningApplication& application) override;
  void open(const std::string& path) override;

  /// Takes an event of the server, and calls the observer when it tells of another active window.
  void handle(const xcb_generic_event_t& event);

 private:
  std::vector<xcb_window_t> windowsOf(const RunningApplication& application) const;

  const xcb_window_t root_;
  const X11Atoms atoms_;
  DesktopEntries& entries_;
  const WindowList windows_;
  const WindowCommands commands_;
  const ProgramList programs_;
  const ServerTime time_;
  const StartupNotice notice_;
  Launcher launcher_;
  const IconThemeChoice themeChoice_;
  IconThemes themes_;
  Guarded<std::function<void()>> handler_;
};

}  // namespace orvel
