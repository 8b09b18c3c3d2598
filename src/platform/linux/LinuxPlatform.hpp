#pragma once

#include "base/Guarded.hpp"
#include "platform/Platform.hpp"
#include "platform/linux/SystemAccessibilityTree.hpp"
#include "platform/linux/SystemActivity.hpp"
#include "platform/linux/SystemAdvertiser.hpp"
#include "platform/linux/SystemAppearance.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"
#include "platform/linux/SystemLoginItemService.hpp"
#include "platform/linux/SystemMachine.hpp"
#include "platform/linux/SystemPreferences.hpp"
#include "platform/linux/SystemSocketTuner.hpp"
#include "platform/linux/SystemStatusItem.hpp"
#include "platform/linux/SystemWorkspace.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/Folders.hpp"
#include "platform/linux/x11/ToolkitConnection.hpp"
#include "platform/linux/x11/X11CaptureService.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/X11EventPoster.hpp"
#include "platform/linux/x11/X11Foreground.hpp"
#include "platform/linux/x11/X11PressWatch.hpp"
#include "platform/linux/x11/X11ScreenRecordingAccess.hpp"
#include "platform/linux/x11/X11TrustCheck.hpp"

#include <sys/resource.h>

#include <functional>
#include <memory>
#include <string>

namespace orvel {

/// The leaves of a Linux desktop with X11.
///
/// Threads: any, but made and destroyed by its owner, never by the handler of `observeEnd`.
class LinuxPlatform final : public Platform {
 public:
  /// The connection is one to `display`. Programs that it starts get `openFiles` as their limit of open files.
  LinuxPlatform(std::unique_ptr<X11Connection> connection, const std::string& display, const rlimit& openFiles);
  ~LinuxPlatform() override;

  /// Starts to follow the desktop. Called once. False when the system has no thread to give.
  bool listen();

  AccessibilityTree& accessibility() override { return accessibility_; }
  Activity& activity() override { return activity_; }
  Advertiser& advertiser() override { return advertiser_; }
  Appearance& appearance() override { return appearance_; }
  ApplicationBundles& bundles() override { return bundles_; }
  CaptureService& capture() override { return capture_; }
  Displays& displays() override { return displays_; }
  JPEGEncoder& encoder() override { return encoder_; }
  EventPoster& events() override { return events_; }
  Foreground& foreground() override { return foreground_; }
  LoginItemService& loginItem() override { return loginItem_; }
  Machine& machine() override { return machine_; }
  Preferences& preferences() override { return preferences_; }
  PressWatch& presses() override { return presses_; }
  ScreenRecordingAccess& screenRecording() override { return screenRecording_; }
  SocketTuner& socketTuner() override { return socketTuner_; }
  StatusItem& statusItem() override { return statusItem_; }
  TrustCheck& trust() override { return trust_; }
  Workspace& workspace() override { return workspace_; }

  void observeEnd(std::function<void()> handler) override;
  void stopTyping() override { events_.stopTyping(); }
  void giveUp() override;

 private:
  struct End {
    bool hasCome = false;
    std::function<void()> handler;
  };

  void end();

  const std::unique_ptr<X11Connection> connection_;
  const DataFolders dataFolders_ = DataFolders::ofUser();
  DesktopEntries desktopEntries_{dataFolders_.shared};
  SystemAccessibilityTree accessibility_;
  SystemActivity activity_;
  SystemAdvertiser advertiser_;
  SystemAppearance appearance_;
  SystemApplicationBundles bundles_;
  X11CaptureService capture_;
  X11Displays displays_;
  SystemJPEGEncoder encoder_;
  X11EventPoster events_;
  X11Foreground foreground_;
  SystemLoginItemService loginItem_;
  SystemMachine machine_;
  SystemPreferences preferences_;
  X11PressWatch presses_;
  X11ScreenRecordingAccess screenRecording_;
  SystemSocketTuner socketTuner_;
  SystemStatusItem statusItem_;
  const ToolkitConnection toolkit_;
  X11TrustCheck trust_;
  SystemWorkspace workspace_;
  Guarded<End> end_;
};

}  // namespace orvel
