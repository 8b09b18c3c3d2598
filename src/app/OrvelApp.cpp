#include "app/OrvelApp.hpp"

#include "app/ServerHub.hpp"
#include "platform/Platform.hpp"
#include "session/Machine.hpp"
#include "session/NetworkInfo.hpp"
#include "ui/MainLoop.hpp"

#include <iostream>
#include <string>

namespace orvel {
namespace {

std::string addressToShow(const Machine& machine) {
  return NetworkInfo::localAddress(machine).value_or("not on a network") + ":" + std::to_string(ServerHub::defaultPort);
}

}  // namespace

OrvelApp::OrvelApp(MainLoop& mainLoop, Platform& platform)
    : mainLoop_(mainLoop),
      pointerQueue_(workers_.makeSerialQueue("orvel.pointer")),
      pairing_(platform.preferences()),
      permission_(platform.trust()),
      pointer_(platform.events(), platform.displays(), clock_, *pointerQueue_),
      network_(platform.socketTuner()),
      services_{.events = platform.events(),
                .machine = platform.machine(),
                .pairing = pairing_,
                .permission = permission_,
                .pointer = pointer_,
                .queues = workers_,
                .trust = platform.trust()},
      hub_(ServerHub::make({.advertiser = platform.advertiser(),
                            .clock = clock_,
                            .mainThread = mainLoop,
                            .network = network_,
                            .services = services_})),
      status_(std::cout, addressToShow(platform.machine())),
      delegate_(hub_, permission_, platform.workspace(), mainLoop) {
  hub_->observe([this](const HubState& next) { status_.show(hub_->state(), next); });
}

OrvelApp::~OrvelApp() = default;

int OrvelApp::run() {
  delegate_.applicationDidFinishLaunching();
  const int exitCode = mainLoop_.run();
  delegate_.applicationWillTerminate();
  // The sessions take themselves down on the network's threads and may leave work behind: both end before what they
  // use.
  network_.finish();
  workers_.finish();
  return exitCode;
}

}  // namespace orvel
