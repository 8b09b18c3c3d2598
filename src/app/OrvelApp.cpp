#include "app/OrvelApp.hpp"

#include "app/ServerHub.hpp"
#include "input/EventPoster.hpp"
#include "input/TrustCheck.hpp"
#include "platform/Platform.hpp"
#include "session/Machine.hpp"
#include "ui/Foreground.hpp"
#include "ui/MainLoop.hpp"

#include <iostream>
#include <string>

namespace orvel {
namespace {

std::string addressToShow(const Machine& machine) {
  const std::string port = std::to_string(ServerHub::defaultPort);
  const auto address = NetworkInfo::localAddress(machine);
  return address ? *address + ":" + port : "port " + port + ", but this computer is not on a network";
}

}  // namespace

OrvelApp::OrvelApp(MainLoop& mainLoop, Platform& platform)
    : mainLoop_(mainLoop),
      platform_(platform),
      pointerQueue_(latencyCriticalWorkers_.makeSerialQueue()),
      snapQueue_(latencyCriticalWorkers_.makeSerialQueue()),
      mirrorQueue_(latencyCriticalWorkers_.makeSerialQueue()),
      apps_(platform.workspace(), platform.bundles()),
      keyboard_(platform.events(), clock_),
      keys_(platform.events()),
      media_(platform.events()),
      mirror_({.access = platform.screenRecording(),
               .capture = platform.capture(),
               .encoder = platform.encoder(),
               .queue = *mirrorQueue_}),
      pairing_(platform.preferences()),
      permission_(platform.trust()),
      pointer_(platform.events(), platform.displays(), clock_, *pointerQueue_),
      snap_({.clock = clock_,
             .permission = permission_,
             .pointer = pointer_,
             .queue = *snapQueue_,
             .tree = platform.accessibility()}),
      network_(platform.socketMonitor()),
      services_{.apps = apps_,
                .events = platform.events(),
                .keyboard = keyboard_,
                .keys = keys_,
                .machine = platform.machine(),
                .media = media_,
                .mirror = mirror_,
                .pairing = pairing_,
                .permission = permission_,
                .pointer = pointer_,
                .queues = sessionWorkers_,
                .recording = platform.screenRecording(),
                .snap = snap_,
                .trust = platform.trust()},
      hub_(ServerHub::make({.advertiser = platform.advertiser(),
                            .clock = clock_,
                            .mainThread = mainLoop,
                            .network = network_,
                            .services = services_})),
      panelQueue_(sessionWorkers_.makeSerialQueue()),
      panelService_({.hub = hub_,
                     .machine = platform.machine(),
                     .mainThread = mainLoop,
                     .pairing = pairing_,
                     .permission = permission_,
                     .slowQueue = *panelQueue_,
                     .trust = platform.trust(),
                     .quit = [this] { quit(0); }}),
      loginItem_(platform.loginItem()),
      menuBarExtra_({.appearance = platform.appearance(),
                     .clock = clock_,
                     .foreground = platform.foreground(),
                     .host = panelService_,
                     .loginItem = loginItem_,
                     .presses = platform.presses(),
                     .statusItem = platform.statusItem()}),
      status_(
          std::cout, [&machine = platform.machine()] { return addressToShow(machine); },
          [&trust = platform.trust()] { return trust.notice().explanation; }),
      appNap_(platform.activity()),
      delegate_({.foreground = platform.foreground(),
                 .hub = hub_,
                 .mainThread = mainLoop,
                 .permission = permission_,
                 .workspace = platform.workspace()}),
      watchdog_(platform) {
  hub_->observe([this](const HubState& next) {
    status_.show(hub_->state(), next);
    appNap_.follow(next);
    refreshPanelSoon();
  });
  panelService_.observe([this] { menuBarExtra_.refresh(); });
}

OrvelApp::~OrvelApp() = default;

void OrvelApp::refreshPanelSoon() {
  // The hub announces a change before it takes effect.
  mainLoop_.post([this] { menuBarExtra_.refresh(); });
}

void OrvelApp::showPanel(const std::string& token) {
  menuBarExtra_.openPanel(token);
}

void OrvelApp::greet(const Start& start) {
  menuBarExtra_.show([this, start](bool hasIcon) {
    if (start.inBackground || hasIcon) return platform_.foreground().finishStart(start.token);
    showPanel(start.token);
  });
}

void OrvelApp::quit(int exitCode) {
  watchdog_.begin(exitCode);
  // At once, whatever the main thread waits for: they let go of what their phones hold down.
  hub_->disconnectAll();
  mainLoop_.quit(exitCode);
}

int OrvelApp::run(const Start& start) {
  // Read before the first phone comes: whatever happens to the file later, this one is known.
  pairing_.token();
  delegate_.applicationDidFinishLaunching();
  greet(start);
  const int exitCode = mainLoop_.run();
  watchdog_.begin(exitCode);
  menuBarExtra_.closePanel();
  keyboard_.stop();
  platform_.stopTyping();
  delegate_.applicationWillTerminate();
  // The sessions take themselves down on the network's threads and may leave work behind: both end before what they
  // use.
  network_.finish();
  sessionWorkers_.finish();
  // What sessions still hold that were not taken down in time, or that work has pressed whose rest was dropped.
  keys_.releaseAll();
  platform_.events().flush();
  latencyCriticalWorkers_.finish();
  mirror_.finish();
  return exitCode;
}

}  // namespace orvel
