#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/TemporaryFolder.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// A private Wayland desktop without a monitor, 1280 by 800, with Xwayland, a private home and message buses of its
/// own. At its end the compositor is asked to end, so that it ends what it has started.
///
/// Threads: one at a time; the thread that made it must live as long as the desktop.
class WaylandDesktop {
 public:
  enum class Kind { sway, gnome };

  static constexpr int width = 1280;
  static constexpr int height = 800;

  /// Why this system does not permit such a desktop, in a sentence; nothing where it does. A desktop that is permitted
  /// and does not start is a fault.
  static std::optional<std::string> obstacle(Kind kind);

  /// Starts it and waits until it shows windows, a minute at most. Throws, with what the compositor says, when it does
  /// not. Without an output it is as a computer whose monitor is not connected yet; that is for sway alone.
  explicit WaylandDesktop(Kind kind, bool hasOutput = true);
  ~WaylandDesktop();

  const std::filesystem::path& home() const { return home_.path(); }

  /// The name of its Xwayland for DISPLAY. It may need the cookie of `environment`.
  const std::string& display() const { return display_; }

  const SessionBus& bus() const { return bus_; }

  /// What a program needs to be on this desktop and on its bus, and on no other.
  ChildProcess::Environment environment() const;

 private:
  const std::filesystem::path& privateHome() const;
  ChildProcess::Environment bareEnvironment() const;
  void startSway(bool hasOutput);
  void startSystemBus();
  void startGnome();
  void startCompositor(std::vector<std::string> command, const std::vector<std::string>& compositor,
                       const ChildProcess::Environment& environment);
  std::string textBetween(const std::string& before, const std::string& after);
  [[noreturn]] void fail();

  const Kind kind_;
  const Deadline started_;
  TemporaryFolder home_;
  SessionBus bus_;
  std::optional<ChildProcess> systemBus_;
  std::optional<ChildProcess> compositor_;
  std::string display_;
  std::string waylandDisplay_;
  std::optional<std::string> cookie_;
};

}  // namespace orvel
