#pragma once

#include <memory>

namespace orvel {

class Executor;
class PermissionGate;
class ServerHub;
class Workspace;

/// What the application does when it has been launched and before it ends. Threads: the main thread.
class HelperDelegate {
 public:
  HelperDelegate(std::shared_ptr<ServerHub> hub, PermissionGate& permission, Workspace& workspace,
                 Executor& mainThread);

  /// Reads the permission, starts the hub, and has the permission read again whenever another program comes to the
  /// front: its user may just have granted it.
  void applicationDidFinishLaunching();

  /// Closes every phone's connection and the port.
  void applicationWillTerminate();

 private:
  const std::shared_ptr<ServerHub> hub_;
  PermissionGate& permission_;
  Workspace& workspace_;
  Executor& mainThread_;
};

}  // namespace orvel
