#include "platform/linux/LinuxPlatform.hpp"

#include "platform/LeavableThread.hpp"
#include "platform/linux/SystemLoginItemService.hpp"
#include "platform/linux/bus/MessageBus.hpp"
#include "platform/linux/files/Folders.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <malloc.h>
#include <sys/resource.h>

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace orvel {
namespace {

constexpr rlim_t mostDescriptors = 65536;
constexpr std::chrono::seconds silentBusTimeout{1};
constexpr int largestKeptBlock = 256 * 1024;

std::string needsDesktop(const std::string& reason) {
  return "Orvel needs a desktop to work on: " + reason;
}

/// Every phone needs a descriptor, and the usual limit is meant for programs that wait for them by select(). Returns
/// that limit.
rlimit allowManyConnections() {
  rlimit usual{};
  if (getrlimit(RLIMIT_NOFILE, &usual) != 0) return {RLIM_INFINITY, RLIM_INFINITY};
  rlimit limit = usual;
  limit.rlim_cur = std::min(limit.rlim_max, mostDescriptors);
  setrlimit(RLIMIT_NOFILE, &limit);
  return usual;
}

/// Nothing as well when no server answers.
std::optional<std::string> inputObstacleAt(const std::string& display) {
  const auto connection = X11Connection::open(display);
  if (!connection) return std::nullopt;
  X11TrustCheck trust(*connection);
  if (trust.isTrusted()) return std::nullopt;
  return trust.notice().explanation;
}

/// The C library would learn from one large message to keep the memory of all that follow.
void giveMemoryBack() {
  mallopt(M_MMAP_THRESHOLD, largestKeptBlock);
}

}  // namespace

LinuxPlatform::LinuxPlatform(std::unique_ptr<X11Connection> connection, const std::string& display,
                             const rlimit& openFiles)
    : connection_(std::move(connection)),
      accessibility_(*connection_),
      appearance_(*connection_),
      bundles_(desktopEntries_),
      capture_(*connection_, display),
      displays_(*connection_),
      events_(*connection_, displays_),
      foreground_(*connection_),
      loginItem_(ConfigurationFolders::ofUser(), ownProgram()),
      presses_(*connection_),
      screenRecording_(*connection_),
      trust_(*connection_),
      workspace_(*connection_, desktopEntries_, dataFolders_, openFiles) {}

LinuxPlatform::~LinuxPlatform() {
  // Before the leaves go that its thread calls.
  connection_->stopListening();
  // Nothing of the toolkit's is wanted any more, and it goes next.
  toolkit_.breakOff();
}

bool LinuxPlatform::listen() {
  return connection_->listen({.event =
                                  [this](const xcb_generic_event_t& event) {
                                    displays_.handle(event);
                                    events_.handle(event);
                                    appearance_.handle(event);
                                    foreground_.handle(event);
                                    presses_.handle(event);
                                    workspace_.handle(event);
                                  },
                              .ended = [this] { end(); }});
}

void LinuxPlatform::observeEnd(std::function<void()> handler) {
  const bool late = end_.withLock([&](End& end) {
    if (!end.hasCome) end.handler = handler;
    return end.hasCome;
  });
  if (late) handler();
}

void LinuxPlatform::giveUp() {
  connection_->breakOff();
  capture_.giveUp();
  toolkit_.breakOff();
}

void LinuxPlatform::end() {
  const auto handler = end_.withLock([](End& end) {
    end.hasCome = true;
    return std::move(end.handler);
  });
  if (handler) handler();
}

std::optional<std::string> missingDesktop() {
  const std::string display = environmentVariable("DISPLAY");
  if (!display.empty()) {
    if (X11Connection::open(display)) return std::nullopt;
    return needsDesktop("no X display answers at \"" + display + "\".");
  }
  if (!environmentVariable("WAYLAND_DISPLAY").empty()) {
    return needsDesktop("it does not work on Wayland yet, and this is a Wayland session. Log in to an X11 session.");
  }
  return needsDesktop(
      "there is none here, as neither DISPLAY nor WAYLAND_DISPLAY is set. Start it from the "
      "applications menu or from a terminal of your desktop.");
}

std::vector<std::string> prepareToolkit() {
  keepToolkitOffUnresponsiveBus(TimeLimit(silentBusTimeout));
  // The panel's look is ours. A theme of the desktop's would bring another whole toolkit into this process.
  QGuiApplication::setDesktopSettingsAware(false);
  // X11 on Wayland, too: there only Xwayland lets a window open beside an icon.
  return {"-platform", "xcb"};
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  const rlimit openFiles = allowManyConnections();
  giveMemoryBack();
  const std::string display = environmentVariable("DISPLAY");
  auto connection = X11Connection::open(display);
  if (!connection) return needsDesktop("no X display answers at \"" + display + "\".");
  auto platform = std::make_unique<LinuxPlatform>(std::move(connection), display, openFiles);
  if (!platform->listen()) return needsDesktop("the system has no thread left to follow it with.");
  return platform;
}

std::optional<std::string> inputObstacle() {
  const std::string display = environmentVariable("DISPLAY");
  if (display.empty() && !environmentVariable("WAYLAND_DISPLAY").empty())
    return X11TrustCheck::noticeOnWayland().explanation;
  // Another computer's display, such as that of whoever has logged in from there, says nothing of this one.
  if (!display.starts_with(':')) return std::nullopt;
  const auto answer = std::make_shared<Guarded<std::optional<std::string>>>();
  {
    // The server may hang.
    LeavableThread asking;
    asking.start([display, answer] {
      auto obstacle = inputObstacleAt(display);
      answer->withLock([&](auto& known) { known = std::move(obstacle); });
    });
  }
  return answer->withLock([](const auto& known) { return known; });
}

std::unique_ptr<Preferences> openPreferences() {
  return std::make_unique<SystemPreferences>();
}

std::unique_ptr<Machine> openMachine() {
  return std::make_unique<SystemMachine>();
}

}  // namespace orvel
