#pragma once

#include "app/AppNapGuard.hpp"
#include "app/ConsoleStatus.hpp"
#include "app/HelperDelegate.hpp"
#include "app/PanelService.hpp"
#include "app/Termination.hpp"
#include "base/Clock.hpp"
#include "base/WorkerThreads.hpp"
#include "catalog/AppCatalog.hpp"
#include "input/CursorSnap.hpp"
#include "input/HeldKeys.hpp"
#include "input/KeyboardDriver.hpp"
#include "input/MediaDriver.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "mirror/ScreenMirror.hpp"
#include "session/ClientSession.hpp"
#include "session/NetworkThread.hpp"
#include "session/PairingStore.hpp"
#include "ui/LoginItem.hpp"
#include "ui/MenuBarExtra.hpp"

#include <memory>
#include <string>

namespace orvel {

class MainLoop;
class Platform;
class ServerHub;

/// The application: holds the one object of each kind, ties them together and runs them. Threads: the main thread.
class OrvelApp {
 public:
  /// How it was started.
  struct Start {
    bool inBackground = false;  ///< Whether the panel stays closed even where there is no icon to open it from.
    std::string token{};        ///< The desktop's proof that the user wished the start; may be empty.
  };

  OrvelApp(MainLoop& mainLoop, Platform& platform);
  ~OrvelApp();
  OrvelApp(const OrvelApp&) = delete;
  OrvelApp& operator=(const OrvelApp&) = delete;

  /// Runs until the main loop quits, then closes every connection, lets go of every held button and key,
  /// and returns the exit code.
  int run(const Start& start);

  /// Disconnects every phone and ends `run`. A desktop that hangs is not waited for longer than three seconds, nor is
  /// anything else that keeps `run` from returning for longer than five. Threads: any.
  void quit(int exitCode);

  /// Opens the panel, or brings it to the front. `token` is the desktop's activation token; may be empty.
  void showPanel(const std::string& token);

 private:
  void refreshPanelSoon();
  void greet(const Start& start);

  MainLoop& mainLoop_;
  Platform& platform_;
  SystemClock clock_;
  WorkerThreads latencyCriticalWorkers_;  // for what must not wait, however many texts are being typed
  WorkerThreads sessionWorkers_;
  const std::unique_ptr<Executor> pointerQueue_;
  const std::unique_ptr<Executor> snapQueue_;
  const std::unique_ptr<Executor> mirrorQueue_;
  AppCatalog apps_;
  KeyboardDriver keyboard_;
  HeldKeys keys_;
  MediaDriver media_;
  ScreenMirror mirror_;
  PairingStore pairing_;
  PermissionGate permission_;
  PointerDriver pointer_;
  CursorSnap snap_;
  NetworkThread network_;
  const SessionServices services_;
  const std::shared_ptr<ServerHub> hub_;
  const std::unique_ptr<Executor> panelQueue_;
  PanelService panelService_;
  LoginItem loginItem_;
  MenuBarExtra menuBarExtra_;
  ConsoleStatus status_;
  AppNapGuard appNap_;
  HelperDelegate delegate_;
  ShutdownWatchdog watchdog_;
};

}  // namespace orvel
