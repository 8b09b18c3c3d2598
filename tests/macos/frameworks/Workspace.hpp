#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

/// The programs of the user, in place of AppKit's shared workspace.
namespace fake {

struct Program {
  int process = 0;
  std::optional<std::string> identifier = {};
  std::optional<std::string> name = {};
  std::optional<std::string> path = {};
  int policy = 0;  ///< 0 regular, 1 accessory, 2 prohibited.
  bool hasEnded = false;
  bool refusesActivation = false;
  bool ignoresActivation = false;  ///< Whether the system says yes to it and does nothing.
  bool comesLate = false;          ///< Whether it is in front only some time after the system said yes.
};

struct Workspace {
  std::vector<Program> programs;
  std::map<std::string, std::string> locations;  ///< Paths by bundle identifier.
  std::vector<std::string> calls;                ///< What was asked of programs, in order.
  int front = 0;                                 ///< The process in front.
};

/// Tests set it anew.
Workspace& workspace();

/// Notifies the workspace's observers, on this thread, that another program has come to the front.
void bringAnotherToFront();

/// Brings the program of that process to the front, and notifies the observers on this thread.
void comeToFront(int process);

/// How many observers the workspace has.
std::size_t workspaceObservers();

}  // namespace fake
