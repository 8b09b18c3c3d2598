#include "platform/linux/LinuxPlatform.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace orvel {
namespace {

constexpr rlim_t mostDescriptors = 65536;
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

/// The C library would learn from one large message to keep the memory of all that follow.
void giveMemoryBack() {
  mallopt(M_MMAP_THRESHOLD, largestKeptBlock);
}

}  // namespace

LinuxPlatform::LinuxPlatform(std::unique_ptr<X11Connection> connection, const std::string& display,
                             const rlimit& openFiles)
    : connection_(std::move(connection)),
      accessibility_(*connection_),
      bundles_(desktopEntries_),
      capture_(*connection_, display),
      displays_(*connection_),
      events_(*connection_, displays_),
      screenRecording_(*connection_),
      trust_(*connection_),
      workspace_(*connection_, desktopEntries_, dataFolders_, openFiles) {}

LinuxPlatform::~LinuxPlatform() {
  // Before the leaves go that its thread calls.
  connection_->stopListening();
}

bool LinuxPlatform::listen() {
  return connection_->listen({.event =
                                  [this](const xcb_generic_event_t& event) {
                                    displays_.handle(event);
                                    events_.handle(event);
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
}

void LinuxPlatform::end() {
  const auto handler = end_.withLock([](End& end) {
    end.hasCome = true;
    return std::move(end.handler);
  });
  if (handler) handler();
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  const rlimit openFiles = allowManyConnections();
  giveMemoryBack();
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') return needsDesktop("no X display is named in DISPLAY.");
  auto connection = X11Connection::open(display);
  if (!connection) return needsDesktop("no X display answers at \"" + std::string(display) + "\".");
  auto platform = std::make_unique<LinuxPlatform>(std::move(connection), display, openFiles);
  if (!platform->listen()) return needsDesktop("the system has no thread left to follow it with.");
  return platform;
}

std::unique_ptr<Preferences> openPreferences() {
  return std::make_unique<SystemPreferences>();
}

std::unique_ptr<Machine> openMachine() {
  return std::make_unique<SystemMachine>();
}

}  // namespace orvel
