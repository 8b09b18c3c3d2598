#pragma once

#include "base/Guarded.hpp"
#include "catalog/Workspace.hpp"

#include <xcb/xcb.h>

#include <functional>

namespace orvel {

class X11Connection;

/// What the window manager tells of the user's programs by properties of the root window.
///
/// Threads: any; `handle` is called on the thread of the connection and calls the observer there.
class SystemWorkspace final : public Workspace {
 public:
  explicit SystemWorkspace(X11Connection& connection);

  void observeActivation(std::function<void()> handler) override;
  std::vector<RunningApplication> runningApplications() override;
  std::optional<std::string> location(const std::string& identifier) override;
  std::optional<std::vector<std::uint8_t>> icon(const std::string& path, double size) override;
  void activate(const RunningApplication& application) override;
  void terminate(const RunningApplication& application) override;
  void open(const std::string& path) override;

  /// Takes an event of the server, and calls the observer when it tells of another active window.
  void handle(const xcb_generic_event_t& event);

 private:
  const xcb_window_t root_;
  const xcb_atom_t activeWindow_;
  Guarded<std::function<void()>> handler_;
};

}  // namespace orvel
