#pragma once

#include <memory>

namespace orvel {

class Executor;
class Foreground;
class PermissionGate;
class ServerHub;
class Workspace;

/// What the application does when it has been launched and before it ends. Threads: the main thread.
class HelperDelegate {
 public:
  struct Dependencies {
    Foreground& foreground;
    std::shared_ptr<ServerHub> hub;
    Executor& mainThread;
    PermissionGate& permission;
    Workspace& workspace;
  };

  explicit HelperDelegate(Dependencies dependencies);

  /// Becomes an accessory of the desktop, reads the permission, starts the hub, and has the permission read again
  /// whenever another program comes to the front: its user may just have granted it.
  void applicationDidFinishLaunching();

  /// Closes every phone's connection and the port.
  void applicationWillTerminate();

 private:
  const Dependencies dependencies_;
};

}  // namespace orvel
