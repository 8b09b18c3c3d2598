#pragma once

#include "platform/linux/Backend.hpp"
#include "platform/linux/x11/X11Access.hpp"
#include "platform/linux/x11/X11ActivationTokens.hpp"
#include "platform/linux/x11/X11CaptureService.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/X11EventPoster.hpp"
#include "platform/linux/x11/X11Foreground.hpp"
#include "platform/linux/x11/X11PressWatch.hpp"
#include "platform/linux/x11/X11ThemeSettings.hpp"
#include "platform/linux/x11/X11Windows.hpp"

#include <memory>
#include <optional>
#include <string>

namespace orvel {

class X11Connection;

/// The leaves of one X server.
///
/// Threads: as `Backend`; made on the main thread, while the toolkit is there.
class X11Backend final : public Backend {
 public:
  /// The connection is one to `display`.
  X11Backend(std::unique_ptr<X11Connection> connection, const std::string& display);
  ~X11Backend() override;

  CaptureService& capture() override { return capture_; }
  Displays& displays() override { return displays_; }
  EventPoster& events() override { return events_; }
  Foreground& foreground() override { return foreground_; }
  PressWatch& presses() override { return presses_; }
  ScreenRecordingAccess& screenRecording() override { return screenRecording_; }
  TrustCheck& trust() override { return trust_; }

  ActivationTokens& activationTokens() override { return activationTokens_; }
  ThemeSettings& theme() override { return theme_; }
  DesktopWindows& windows() override { return windows_; }
  std::optional<WindowAtPoint> windowAt(Point position) override;
  std::unique_ptr<EmbeddingTray> makeEmbeddingTray(std::function<void()> changed) override;

  bool listen(std::function<void()> ended) override;
  void stopListening() override;
  void stopTyping() override { events_.stopTyping(); }
  void disconnect() override;

 private:
  void dispatch(const xcb_generic_event_t& event);
  void disconnectToolkit() const;

  const std::unique_ptr<X11Connection> connection_;
  const int toolkitSocket_;  // of the toolkit's own connection, or -1
  const X11Atoms atoms_;
  const ServerTime time_;
  X11ActivationTokens activationTokens_;
  X11CaptureService capture_;
  X11Displays displays_;
  X11EventPoster events_;
  X11Foreground foreground_;
  X11PressWatch presses_;
  X11ScreenRecordingAccess screenRecording_;
  X11ThemeSettings theme_;
  X11TrustCheck trust_;
  X11Windows windows_;
};

}  // namespace orvel
