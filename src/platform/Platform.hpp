#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

class AccessibilityTree;
class Activity;
class Advertiser;
class Appearance;
class ApplicationBundles;
class CaptureService;
class Displays;
class EventPoster;
class Foreground;
class JPEGEncoder;
class LoginItemService;
class Machine;
class Preferences;
class PressWatch;
class ScreenRecordingAccess;
class SocketMonitor;
class StatusItem;
class TrustCheck;
class Workspace;

/// The leaves of the desktop at hand, each behind the seam of the room that needs it.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual AccessibilityTree& accessibility() = 0;
  virtual Activity& activity() = 0;
  virtual Advertiser& advertiser() = 0;
  virtual Appearance& appearance() = 0;
  virtual ApplicationBundles& bundles() = 0;
  virtual CaptureService& capture() = 0;
  virtual Displays& displays() = 0;
  virtual JPEGEncoder& encoder() = 0;
  virtual EventPoster& events() = 0;
  virtual Foreground& foreground() = 0;
  virtual LoginItemService& loginItem() = 0;
  virtual Machine& machine() = 0;
  virtual Preferences& preferences() = 0;
  virtual PressWatch& presses() = 0;
  virtual ScreenRecordingAccess& screenRecording() = 0;
  virtual SocketMonitor& socketMonitor() = 0;
  virtual StatusItem& statusItem() = 0;
  virtual TrustCheck& trust() = 0;
  virtual Workspace& workspace() = 0;

  /// Calls `handler`, once and from any thread, when the desktop has gone and this program has no more to serve.
  /// Called before anything else.
  virtual void observeEnd(std::function<void()> handler) = 0;

  /// Text that is being typed ends where it is, and no more is typed: the program ends. Threads: any.
  virtual void stopTyping() = 0;

  /// Disconnects from a desktop that does not answer any more: who waits for it gets nothing. Threads: any.
  virtual void giveUp() = 0;
};

/// Why there is no desktop to work on, in a sentence for the user; nothing when there is one. Asked before anything
/// else is made, for the toolkit ends a program that has no desktop.
std::optional<std::string> missingDesktop();

/// Prepares the toolkit for a desktop of which parts hang, and returns the options by which it works
/// with the same desktop as `Platform`. Called before the toolkit is made.
std::vector<std::string> prepareToolkit();

/// Opens the desktop of this login, or says in a sentence for the user why there is none.
std::variant<std::unique_ptr<Platform>, std::string> openPlatform();

/// Why nothing that phones send moves anything on the desktop of this terminal, in a sentence for the user. Nothing
/// where it does, and where that cannot be known from a terminal. Waits for the desktop, a second at most.
std::optional<std::string> inputObstacle();

/// The preferences and the machine alone, for the commands that need no desktop.
std::unique_ptr<Preferences> openPreferences();
std::unique_ptr<Machine> openMachine();

}  // namespace orvel
