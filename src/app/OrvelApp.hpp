#pragma once

#include "app/ConsoleStatus.hpp"
#include "app/HelperDelegate.hpp"
#include "base/SystemClock.hpp"
#include "base/WorkerThreads.hpp"
#include "catalog/AppCatalog.hpp"
#include "input/CursorSnap.hpp"
#include "input/KeyboardDriver.hpp"
#include "input/MediaDriver.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "mirror/ScreenMirror.hpp"
#include "session/ClientSession.hpp"
#include "session/NetworkThread.hpp"
#include "session/PairingStore.hpp"

#include <memory>

namespace orvel {

class MainLoop;
class Platform;
class ServerHub;

/// The application: holds the one object of each kind, ties them together and runs them. Threads: the main thread.
class OrvelApp {
 public:
  OrvelApp(MainLoop& mainLoop, Platform& platform);
  ~OrvelApp();
  OrvelApp(const OrvelApp&) = delete;
  OrvelApp& operator=(const OrvelApp&) = delete;

  /// Runs until the main loop is told to quit, then closes every connection, lets go of every held button and key,
  /// and returns the exit code.
  int run();

 private:
  MainLoop& mainLoop_;
  Platform& platform_;
  SystemClock clock_;
  WorkerThreads swiftWorkers_;  // for what must not wait, however many texts are being typed
  WorkerThreads sessionWorkers_;
  const std::unique_ptr<Executor> pointerQueue_;
  const std::unique_ptr<Executor> snapQueue_;
  const std::unique_ptr<Executor> mirrorQueue_;
  AppCatalog apps_;
  KeyboardDriver keyboard_;
  MediaDriver media_;
  ScreenMirror mirror_;
  PairingStore pairing_;
  PermissionGate permission_;
  PointerDriver pointer_;
  CursorSnap snap_;
  NetworkThread network_;
  const SessionServices services_;
  const std::shared_ptr<ServerHub> hub_;
  ConsoleStatus status_;
  HelperDelegate delegate_;
};

}  // namespace orvel
