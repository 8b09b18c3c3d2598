#include "base/Clock.hpp"
#include "platform/Platform.hpp"
#include "platform/macos/CFPointer.hpp"
#include "platform/macos/ProcessSetup.hpp"
#include "platform/macos/SystemAccessibilityTree.hpp"
#include "platform/macos/SystemActivity.hpp"
#include "platform/macos/SystemAdvertiser.hpp"
#include "platform/macos/SystemAppearance.hpp"
#include "platform/macos/SystemApplicationBundles.hpp"
#include "platform/macos/SystemCaptureService.hpp"
#include "platform/macos/SystemDisplays.hpp"
#include "platform/macos/SystemEventPoster.hpp"
#include "platform/macos/SystemForeground.hpp"
#include "platform/macos/SystemJPEGEncoder.hpp"
#include "platform/macos/SystemLoginItemService.hpp"
#include "platform/macos/SystemMachine.hpp"
#include "platform/macos/SystemPreferences.hpp"
#include "platform/macos/SystemPressWatch.hpp"
#include "platform/macos/SystemScreenRecordingAccess.hpp"
#include "platform/macos/SystemSocketMonitor.hpp"
#include "platform/macos/SystemStatusItem.hpp"
#include "platform/macos/SystemTrustCheck.hpp"
#include "platform/macos/SystemWorkspace.hpp"

#include <CoreGraphics/CoreGraphics.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {
namespace {

/// The leaves of a Mac, none of which uses another.
///
/// Threads: made and destroyed on the main thread; the rest on any.
class MacPlatform final : public Platform {
 public:
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
  SocketMonitor& socketMonitor() override { return socketMonitor_; }
  StatusItem& statusItem() override { return statusItem_; }
  TrustCheck& trust() override { return trust_; }
  Workspace& workspace() override { return workspace_; }

  /// Never: the end of the login ends this program, by the application's own way to end.
  void observeEnd(std::function<void()>) override {}

  /// Nothing to do: text is posted at once, and what types it was asked to stop.
  void stopTyping() override {}

  /// The capture alone can be waited for without an end.
  void giveUp() override { capture_.giveUp(); }

 private:
  SystemClock clock_;
  SystemAccessibilityTree accessibility_;
  SystemActivity activity_;
  SystemAdvertiser advertiser_;
  SystemAppearance appearance_;
  SystemApplicationBundles bundles_;
  SystemDisplays displays_;
  SystemJPEGEncoder encoder_;
  SystemEventPoster events_{clock_};
  SystemForeground foreground_;
  SystemLoginItemService loginItem_;
  SystemMachine machine_;
  SystemPreferences preferences_;
  SystemPressWatch presses_;
  SystemScreenRecordingAccess screenRecording_;
  SystemSocketMonitor socketMonitor_;
  SystemStatusItem statusItem_;
  SystemTrustCheck trust_;
  SystemWorkspace workspace_;
  SystemCaptureService capture_;  // goes first, as its frames come on a thread of their own
};

/// Whether this login has a session of the server that draws the desktop. One over the network alone has none.
bool hasWindowServer() {
  return CFPointer<CFDictionaryRef>(CGSessionCopyCurrentDictionary()) != nullptr;
}

}  // namespace

std::optional<std::string> missingDesktop() {
  if (hasWindowServer()) return std::nullopt;
  return "Orvel needs a desktop to work on: this login has none, as it came over the network. Start Orvel on the Mac "
         "itself, from Finder or from a terminal there.";
}

std::vector<std::string> prepareToolkit() {
  // It would give a program that is started outside of its bundle a place in the Dock, and the keyboard.
  setenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1", 1);
  return {};
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  ProcessSetup::allowManyFiles();
  ProcessSetup::applyUserLanguage();
  return std::make_unique<MacPlatform>();
}

std::optional<std::string> inputObstacle() {
  // What a terminal starts has the terminal's permissions, not those of the Orvel that runs.
  return std::nullopt;
}

std::unique_ptr<Preferences> openPreferences() {
  return std::make_unique<SystemPreferences>();
}

std::unique_ptr<Machine> openMachine() {
  return std::make_unique<SystemMachine>();
}

}  // namespace orvel
