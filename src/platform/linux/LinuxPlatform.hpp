#pragma once

#include "base/Guarded.hpp"
#include "platform/Platform.hpp"
#include "platform/linux/SystemAccessibilityTree.hpp"
#include "platform/linux/SystemAdvertiser.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"
#include "platform/linux/SystemDisplays.hpp"
#include "platform/linux/SystemEventPoster.hpp"
#include "platform/linux/SystemMachine.hpp"
#include "platform/linux/SystemPreferences.hpp"
#include "platform/linux/SystemSocketTuner.hpp"
#include "platform/linux/SystemTrustCheck.hpp"
#include "platform/linux/SystemWorkspace.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/DataFolders.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <sys/resource.h>

#include <functional>
#include <memory>

namespace orvel {

/// The leaves of a Linux desktop with X11.
///
/// Threads: any, but made and destroyed by its owner, never by the handler of `observeEnd`.
class LinuxPlatform final : public Platform {
 public:
  /// Programs that it starts get `openFiles` as their limit of open files.
  LinuxPlatform(std::unique_ptr<X11Connection> connection, const rlimit& openFiles);
  ~LinuxPlatform() override;

  /// Starts to follow the desktop. Called once. False when the system has no thread to give.
  bool listen();

  AccessibilityTree& accessibility() override { return accessibility_; }
  Advertiser& advertiser() override { return advertiser_; }
  ApplicationBundles& bundles() override { return bundles_; }
  Displays& displays() override { return displays_; }
  EventPoster& events() override { return events_; }
  Machine& machine() override { return machine_; }
  Preferences& preferences() override { return preferences_; }
  SocketTuner& socketTuner() override { return socketTuner_; }
  TrustCheck& trust() override { return trust_; }
  Workspace& workspace() override { return workspace_; }

  void observeEnd(std::function<void()> handler) override;
  void stopTyping() override { events_.stopTyping(); }
  void giveUp() override { connection_->breakOff(); }

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
  SystemAdvertiser advertiser_;
  SystemApplicationBundles bundles_;
  SystemDisplays displays_;
  SystemEventPoster events_;
  SystemMachine machine_;
  SystemPreferences preferences_;
  SystemSocketTuner socketTuner_;
  SystemTrustCheck trust_;
  SystemWorkspace workspace_;
  Guarded<End> end_;
};

}  // namespace orvel
