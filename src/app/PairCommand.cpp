#include "app/PairCommand.hpp"

#include "app/ServerHub.hpp"
#include "platform/Platform.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"
#include "session/Preferences.hpp"
#include "ui/QRMaker.hpp"

#include <unistd.h>

#include <iostream>
#include <string>

namespace orvel {
namespace {

constexpr int notStored = 1;
constexpr double qrSide = 190;

std::string storedCode() {
  const auto preferences = openPreferences();
  return PairingStore(*preferences).displayToken();
}

void printQRCode(const Machine& machine) {
  const auto preferences = openPreferences();
  PairingStore pairing(*preferences);
  const auto image = QRMaker::image(pairingPayload(machine, pairing, ServerHub::defaultPort), qrSide);
  if (image) std::cout << '\n' << QRText::lines(*image, isatty(STDOUT_FILENO) != 0);
}

/// Last, and behind what is printed, as a desktop that hangs takes a moment.
void sayObstacle() {
  std::cout.flush();
  if (const auto obstacle = inputObstacle()) std::cout << '\n' << *obstacle << '\n';
}

}  // namespace

int printPairing() {
  const std::string code = storedCode();
  // Read anew: a code that could not be stored is another one for everybody who asks.
  if (storedCode() != code) {
    std::cerr << "The pairing code cannot be stored, so no phone can use it: please make the file orvel/orvel.conf in "
                 "your configuration folder readable and writable, or remove it.\n";
    return notStored;
  }
  const auto machine = openMachine();
  const auto address = NetworkInfo::localAddress(*machine);
  if (!address) {
    std::cout << "Address: none, as this computer is not on a network. Connect it to the network that the phone is on, "
                 "then ask again.\nCode:    "
              << code << '\n';
    sayObstacle();
    return 0;
  }
  std::cout << "Address: " << *address << " port " << ServerHub::defaultPort << "\nCode:    " << code << '\n';
  printQRCode(*machine);
  sayObstacle();
  return 0;
}

}  // namespace orvel
