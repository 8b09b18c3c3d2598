#include "app/OrvelApp.hpp"
#include "app/ServerHub.hpp"
#include "app/TerminationSignals.hpp"
#include "platform/Platform.hpp"
#include "session/Machine.hpp"
#include "session/NetworkInfo.hpp"
#include "session/PairingStore.hpp"
#include "session/Preferences.hpp"
#include "ui/MainLoop.hpp"

#include <iostream>
#include <string>
#include <string_view>

namespace {

constexpr int usageError = 2;
constexpr int noDesktop = 1;
constexpr int notStored = 1;

constexpr std::string_view usage =
    "Usage: orvel [option]\n"
    "\n"
    "Lets a phone on the same network be this computer's mouse, keyboard and launcher.\n"
    "Without an option it runs until Ctrl-C.\n"
    "\n"
    "  --pair     print the address and the code that a phone needs, and exit\n"
    "  --version  print the version, and exit\n"
    "  --help     print this, and exit\n";

int runApplication(int argc, char** argv) {
  // Made before the platform, so that it outlives the platform's threads, which post to it.
  orvel::MainLoop mainLoop(argc, argv);
  auto opened = orvel::openPlatform();
  if (const auto* reason = std::get_if<std::string>(&opened)) {
    std::cerr << *reason << '\n';
    return noDesktop;
  }
  auto& platform = *std::get<std::unique_ptr<orvel::Platform>>(opened);
  const orvel::TerminationSignals signals([&] { mainLoop.quit(0); });
  platform.observeEnd([&] {
    std::cerr << "The desktop has gone.\n";
    mainLoop.quit(noDesktop);
  });
  return orvel::OrvelApp(mainLoop, platform).run();
}

std::string pairingCode() {
  const auto preferences = orvel::openPreferences();
  return orvel::PairingStore(*preferences).displayToken();
}

int printPairing() {
  const std::string code = pairingCode();
  // Read anew: a code that could not be stored is another one for everybody who asks.
  if (pairingCode() != code) {
    std::cerr << "The pairing code cannot be stored, so no phone can use it: please make the file orvel/orvel.conf in "
                 "your configuration folder writable.\n";
    return notStored;
  }
  const auto address = orvel::NetworkInfo::localAddress(*orvel::openMachine());
  std::cout << "Address: "
            << (address ? *address + " port " + std::to_string(orvel::ServerHub::defaultPort)
                        : "none, as this computer is not on a network")
            << "\nCode:    " << code << '\n';
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (argc > 2) {
    std::cerr << "orvel: only one option at a time\n" << usage;
    return usageError;
  }
  if (option.empty()) return runApplication(argc, argv);
  if (option == "--pair") return printPairing();
  if (option == "--help") {
    std::cout << usage;
    return 0;
  }
  if (option == "--version") {
    std::cout << "orvel " ORVEL_VERSION "\n";
    return 0;
  }
  std::cerr << "orvel: unknown option '" << option << "'\n" << usage;
  return usageError;
}
