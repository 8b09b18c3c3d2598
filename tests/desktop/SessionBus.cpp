#include "desktop/SessionBus.hpp"

#include "desktop/ProcessTree.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace orvel {
namespace {

BusCall toAccessibility(const char* method, GVariant* arguments, const char* replyType) {
  return {.destination = "org.a11y.Bus",
          .path = "/org/a11y/bus",
          .interface = "org.freedesktop.DBus.Properties",
          .method = method,
          .arguments = arguments,
          .replyType = replyType};
}

bool isAccessibilityOn(const MessageBus& bus) {
  const auto reply = bus.call(toAccessibility("Get", g_variant_new("(ss)", "org.a11y.Status", "IsEnabled"), "(v)"),
                              TimeLimit(timeout));
  if (!reply) return false;
  GVariant* value = nullptr;
  g_variant_get(reply.get(), "(v)", &value);
  const GLibPointer<GVariant> owned(value);
  return g_variant_get_boolean(value);
}

}  // namespace

SessionBus::SessionBus(const std::filesystem::path& home, ChildProcess::Environment environment)
    : address_("unix:path=" + (home / "run/bus").string()), environment_(std::move(environment)) {
  environment_["DBUS_SESSION_BUS_ADDRESS"] = address_;
  const auto services = home / "run/dbus-1/services";
  std::filesystem::create_directories(services);
  for (const std::string name : {"org.freedesktop.portal.Desktop", "org.freedesktop.portal.Documents"}) {
    std::ofstream(services / (name + ".service")) << "[D-BUS Service]\nName=" << name << "\nExec=/bin/false\n";
  }
  start();
}

SessionBus::~SessionBus() {
  stop();
}

void SessionBus::start() {
  daemon_.emplace(ChildProcess::Program{
      .command = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address", address_},
      .environment = environment_});
  if (!daemon_->waitForOutput("unix:path=")) throw std::runtime_error("no bus: " + daemon_->output());
}

void SessionBus::stop() {
  if (!daemon_) return;
  for (const pid_t process : descendantsOf(daemon_->pid())) kill(process, SIGKILL);
  daemon_.reset();
}

bool SessionBus::switchOnAccessibility() const {
  const auto bus = MessageBus::open(address_, TimeLimit(timeout));
  if (!bus) return false;
  GVariant* on = g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(TRUE));
  return bus->call(toAccessibility("Set", on, "()"), TimeLimit(timeout)) != nullptr;
}

bool SessionBus::waitForAccessibility() const {
  const auto bus = MessageBus::open(address_, TimeLimit(timeout));
  if (!bus) return false;
  const Deadline deadline(timeout);
  while (!isAccessibilityOn(*bus)) {
    if (deadline.left() == Milliseconds(0)) return false;
    std::this_thread::sleep_for(Milliseconds(5));
  }
  return true;
}

}  // namespace orvel
