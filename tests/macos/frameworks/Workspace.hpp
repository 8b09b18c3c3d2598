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
};

struct Workspace {
  std::vector<Program> programs;
  std::map<std::string, std::string> locations;  ///< Paths by bundle identifier.
  std::vector<std::string> calls;                ///< What was asked of programs, in order.
};

/// Tests set it anew.
Workspace& workspace();

/// Tells the workspace's observers, on this thread, that another program has come to the front.
void bringAnotherToFront();

/// How many observers the workspace has.
std::size_t workspaceObservers();

}  // namespace fake
