#include "platform/linux/LinuxPlatform.hpp"

#include "platform/linux/X11Connection.hpp"

#include <cstdlib>
#include <string>
#include <utility>

namespace orvel {
namespace {

std::string needsDesktop(const std::string& reason) {
  return "Orvel needs a desktop to work on: " + reason;
}

}  // namespace

LinuxPlatform::LinuxPlatform(std::unique_ptr<X11Connection> connection)
    : connection_(std::move(connection)),
      displays_(*connection_),
      events_(*connection_, displays_),
      trust_(*connection_),
      workspace_(*connection_) {}

LinuxPlatform::~LinuxPlatform() {
  // Before the leaves go that its thread calls.
  connection_->stopListening();
}

bool LinuxPlatform::listen() {
  return connection_->listen({.event =
                                  [this](const xcb_generic_event_t& event) {
                                    displays_.handle(event);
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

void LinuxPlatform::end() {
  const auto handler = end_.withLock([](End& end) {
    end.hasCome = true;
    return std::move(end.handler);
  });
  if (handler) handler();
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') return needsDesktop("no X display is named in DISPLAY.");
  auto connection = X11Connection::open(display);
  if (!connection) return needsDesktop("no X display answers at \"" + std::string(display) + "\".");
  auto platform = std::make_unique<LinuxPlatform>(std::move(connection));
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
