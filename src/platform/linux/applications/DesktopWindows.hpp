#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The number by which a backend knows a window. 0 is none.
using WindowID = std::uint32_t;

/// What a desktop knows of one window of a program.
struct ManagedWindow {
  WindowID id = 0;
  WindowID owner = 0;        ///< The window that this one serves, as a dialog does; else none.
  pid_t process = 0;         ///< 0 when it is unknown.
  std::string instanceName;  ///< The first of the two words of its class.
  std::string className;
  std::string gtkApplicationID;
  bool isApplicationWindow = false;  ///< A window to work in: no panel, menu or the like.
  bool isInTaskbar = false;
};

/// The windows of all programs, as the desktop manages them.
///
/// Threads: any; each operation waits for the desktop.
class DesktopWindows {
 public:
  virtual ~DesktopWindows() = default;

  /// Calls `handler` whenever another window becomes the active one. Called once. Threads: the handler runs on that of
  /// the backend.
  virtual void observeActivation(std::function<void()> handler) = 0;

  /// All windows, in the desktop's own order. Nothing where this desktop does not report them.
  virtual std::optional<std::vector<ManagedWindow>> read() = 0;

  /// Brings the windows of one program to the front, on the workspace where the topmost of them is.
  virtual void activate(const std::vector<WindowID>& windows) = 0;

  /// Asks their program to close them, unless it cannot be asked.
  virtual void close(const std::vector<WindowID>& windows) = 0;
};

/// Activation tokens: a program that is started with one may come to the front with its first window.
///
/// Threads: any; each operation waits for the desktop.
class ActivationTokens {
 public:
  virtual ~ActivationTokens() = default;

  /// Announces that the program of the desktop entry at `entryPath` starts. Empty where the desktop gives no tokens.
  virtual std::string issue(const std::string& name, const std::string& entryPath) = 0;

  /// The program does not start after all.
  virtual void revoke(const std::string& token) = 0;
};

}  // namespace orvel
