#pragma once

#include "base/PermissionNotice.hpp"
#include "platform/linux/accessibility/WindowAtPoint.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace orvel {

class ActivationTokens;
class CaptureService;
class DesktopWindows;
class Displays;
class EmbeddingTray;
class EventPoster;
class Foreground;
class PressWatch;
class ScreenRecordingAccess;
class ThemeSettings;
class TrustCheck;

/// What only the display server of a desktop can do: one set of leaves for each kind of server, of which one is chosen
/// when the program starts. Backends do not know each other.
///
/// Threads: any, but where said.
class Backend {
 public:
  virtual ~Backend() = default;

  virtual CaptureService& capture() = 0;
  virtual Displays& displays() = 0;
  virtual EventPoster& events() = 0;
  virtual Foreground& foreground() = 0;
  virtual PressWatch& presses() = 0;
  virtual ScreenRecordingAccess& screenRecording() = 0;
  virtual TrustCheck& trust() = 0;

  virtual ActivationTokens& activationTokens() = 0;
  virtual ThemeSettings& theme() = 0;
  virtual DesktopWindows& windows() = 0;

  /// As `FindWindowAt` says.
  virtual std::optional<WindowAtPoint> windowAt(Point position) = 0;

  /// Follows the tray into which windows can be embedded. `changed` is called when one comes or goes, and must only
  /// take note. Null where the desktop has no such trays. Threads: the main thread.
  virtual std::unique_ptr<EmbeddingTray> makeEmbeddingTray(std::function<void()> changed) = 0;

  /// Starts to dispatch the server's events to the leaves. Called once; `ended` is called when the server has gone.
  /// False when the system has no thread to give.
  virtual bool listen(std::function<void()> ended) = 0;

  /// No handler runs after that, nor does the toolkit wait for the server any more. Harmless the second time. Not
  /// called by a handler.
  virtual void stopListening() = 0;

  /// Text that is being typed ends where it is, and no more is typed.
  virtual void stopTyping() = 0;

  /// Disconnects from a server that does not answer any more: who waits for it gets nothing.
  virtual void disconnect() = 0;
};

/// A kind of backend, and how it is reached. Each backend exports its own. Threads: the main thread, but where said.
struct BackendKind {
  /// Whether this login has such a desktop, by its environment alone.
  bool (*isPresent)();
  /// Why it does not answer, as the end of a sentence; nothing when it does.
  std::optional<std::string> (*missing)();
  /// The toolkit's plugin that shows windows on it.
  const char* toolkitPlatform;
  /// Null when it does not answer.
  std::unique_ptr<Backend> (*open)();
  /// Why nothing that phones send moves anything there, in a sentence for the user. Nothing where it does, and where
  /// that cannot be known. Waits for the desktop, which may hang. Threads: any.
  std::optional<std::string> (*inputObstacle)();
};

/// The first kind that is present and answers, or else the first that is present, which can say why it does not. A lone
/// one is not asked. Nothing where none is present. Waits for the desktops that are asked.
std::optional<BackendKind> chooseBackend(std::span<const BackendKind> kinds);

/// What is said where Wayland is all there is, until there is a backend for it.
inline PermissionNotice noticeOnWayland() {
  return {.heading = "Orvel does not work on Wayland yet",
          .explanation =
              "In a Wayland session Orvel can neither move the pointer nor type: log out, then log in to an X11 "
              "session."};
}

}  // namespace orvel
