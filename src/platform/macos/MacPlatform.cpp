#include "platform/macos/MacPlatform.hpp"

#include "platform/macos/OpenFiles.hpp"
#include "platform/macos/UserLanguage.hpp"
#include "platform/macos/WindowServer.hpp"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

std::optional<std::string> missingDesktop() {
  if (WindowServer::isThere()) return std::nullopt;
  return "Orvel needs a desktop to work on: this login has none, as it came over the network. Start Orvel on the Mac "
         "itself, from Finder or from a terminal there.";
}

std::vector<std::string> prepareToolkit() {
  // It would give a program that is started outside of its bundle a place in the Dock, and the keyboard.
  setenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1", 1);
  return {};
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  OpenFiles::allowMany();
  UserLanguage::apply();
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
