#pragma once

#include "base/Guarded.hpp"
#include "platform/Platform.hpp"
#include "platform/linux/Backend.hpp"
#include "platform/linux/SystemAccessibilityTree.hpp"
#include "platform/linux/SystemAdvertiser.hpp"
#include "platform/linux/SystemAppearance.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"
#include "platform/linux/SystemLoginItemService.hpp"
#include "platform/linux/SystemMachine.hpp"
#include "platform/linux/SystemPreferences.hpp"
#include "platform/linux/SystemSocketMonitor.hpp"
#include "platform/linux/SystemStatusItem.hpp"
#include "platform/linux/SystemWorkspace.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/Files.hpp"
#include "session/Activity.hpp"

#include <sys/resource.h>

#include <functional>
#include <memory>
#include <string>

namespace orvel {

/// Linux slows no program down for having no window. Threads: any.
class SystemActivity final : public Activity {
 public:
  bool begin(const std::string&) override { return false; }
  void end() override {}
};

/// The leaves of a Linux desktop: those of the backend, and those that need no display server.
///
/// Threads: any, but made and destroyed by its owner, never by the handler of `observeEnd`.
class LinuxPlatform final : public Platform {
 public:
  /// Programs that it starts get `openFiles` as their limit of open files.
  LinuxPlatform(std::unique_ptr<Backend> backend, const rlimit& openFiles);
  ~LinuxPlatform() override;

  /// Starts to follow the desktop. Called once. False when the system has no thread to give.
  bool listen();

  AccessibilityTree& accessibility() override { return accessibility_; }
  Activity& activity() override { return activity_; }
  Advertiser& advertiser() override { return advertiser_; }
  Appearance& appearance() override { return appearance_; }
  ApplicationBundles& bundles() override { return bundles_; }
  CaptureService& capture() override { return backend_->capture(); }
  Displays& displays() override { return backend_->displays(); }
  JPEGEncoder& encoder() override { return encoder_; }
  EventPoster& events() override { return backend_->events(); }
  Foreground& foreground() override { return backend_->foreground(); }
  LoginItemService& loginItem() override { return loginItem_; }
  Machine& machine() override { return machine_; }
  Preferences& preferences() override { return preferences_; }
  PressWatch& presses() override { return backend_->presses(); }
  ScreenRecordingAccess& screenRecording() override { return backend_->screenRecording(); }
  SocketMonitor& socketMonitor() override { return socketMonitor_; }
  StatusItem& statusItem() override { return statusItem_; }
  TrustCheck& trust() override { return backend_->trust(); }
  Workspace& workspace() override { return workspace_; }

  void observeEnd(std::function<void()> handler) override;
  void stopTyping() override { backend_->stopTyping(); }
  void giveUp() override { backend_->disconnect(); }

 private:
  struct End {
    bool hasCome = false;
    std::function<void()> handler;
  };

  void end();

  const std::unique_ptr<Backend> backend_;
  const DataFolders dataFolders_ = DataFolders::ofUser();
  DesktopEntries desktopEntries_{dataFolders_.shared};
  SystemAccessibilityTree accessibility_;
  SystemActivity activity_;
  SystemAdvertiser advertiser_;
  SystemAppearance appearance_;
  SystemApplicationBundles bundles_;
  SystemJPEGEncoder encoder_;
  SystemLoginItemService loginItem_;
  SystemMachine machine_;
  SystemPreferences preferences_;
  SystemSocketMonitor socketMonitor_;
  SystemStatusItem statusItem_;
  SystemWorkspace workspace_;
  Guarded<End> end_;
};

}  // namespace orvel
