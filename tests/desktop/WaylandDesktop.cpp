#include "desktop/WaylandDesktop.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr Milliseconds startLimit{60'000};

/// A bus on which everybody may do everything; GNOME wants one of the system's, and shall not find the real one.
constexpr const char* systemBusConfiguration =
    "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
    "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
    "<busconfig><type>system</type><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
    "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/></policy>";

/// What runs a program that does not start for root.
std::vector<std::string> asAnotherUser() {
  if (geteuid() != 0) return {};
  return {"unshare", "--user", "--map-user=1000", "--map-group=1000"};
}

/// Whether it says that the system has refused it a namespace. It may fail for other reasons, too.
bool isRefusal(const std::string& output) {
  constexpr std::array refusals{EPERM, EACCES, ENOSPC};
  return output.starts_with("unshare: ") && std::ranges::any_of(refusals, [&](int refusal) {
           return output.find(std::generic_category().message(refusal)) != std::string::npos;
         });
}

std::string size() {
  return std::to_string(WaylandDesktop::width) + "x" + std::to_string(WaylandDesktop::height);
}

}  // namespace

std::optional<std::string> WaylandDesktop::obstacle(Kind kind) {
  auto command = asAnotherUser();
  if (kind != Kind::sway || command.empty()) return std::nullopt;
  command.emplace_back("true");
  ChildProcess attempt({.command = std::move(command), .environment = {{"LC_ALL", "C"}}});
  if (attempt.waitForExit() == 0 || !isRefusal(attempt.output())) return std::nullopt;
  return "sway does not start for root, and this system does not let root make a user namespace.";
}

WaylandDesktop::WaylandDesktop(Kind kind, bool hasOutput)
    : kind_(kind), started_(startLimit), bus_(privateHome(), bareEnvironment()) {
  if (kind == Kind::sway) {
    startSway(hasOutput);
  } else {
    startSystemBus();
    startGnome();
  }
}

WaylandDesktop::~WaylandDesktop() {
  compositor_->signal(SIGTERM);
  compositor_->waitForExit(timeout);
}

const std::filesystem::path& WaylandDesktop::privateHome() const {
  std::filesystem::create_directory(home() / "run");
  std::filesystem::permissions(home() / "run", std::filesystem::perms::owner_all);
  return home();
}

ChildProcess::Environment WaylandDesktop::bareEnvironment() const {
  return {{"HOME", home().string()},
          {"XDG_RUNTIME_DIR", (home() / "run").string()},
          {"XDG_CONFIG_HOME", (home() / ".config").string()},
          {"XDG_DATA_HOME", (home() / ".local/share").string()},
          {"XDG_CACHE_HOME", (home() / ".cache").string()},
          {"XDG_SESSION_TYPE", "wayland"},
          {"XDG_CURRENT_DESKTOP", kind_ == Kind::gnome ? "GNOME" : "sway"},
          {"LIBGL_ALWAYS_SOFTWARE", "1"},
          {"LC_ALL", "C.UTF-8"},
          {"GDK_BACKEND", std::nullopt},
          {"QT_QPA_PLATFORM", std::nullopt},
          {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + (home() / "run/system-bus").string()},
          {"DBUS_SESSION_BUS_ADDRESS", std::nullopt},
          {"DISPLAY", std::nullopt},
          {"XAUTHORITY", std::nullopt},
          {"WAYLAND_DISPLAY", std::nullopt}};
}

ChildProcess::Environment WaylandDesktop::environment() const {
  auto environment = bus_.environment();
  environment["DISPLAY"] = display_;
  environment["WAYLAND_DISPLAY"] = waylandDisplay_;
  environment["XAUTHORITY"] = cookie_;
  return environment;
}

void WaylandDesktop::startSway(bool hasOutput) {
  const auto configuration = home() / "sway.conf";
  std::ofstream(configuration) << "xwayland enable\n"
                               << "output HEADLESS-1 resolution " << size() << " position 0 0\n"
                               << "exec echo \"display $DISPLAY, wayland $WAYLAND_DISPLAY.\"\n";
  auto environment = bareEnvironment();
  environment["WLR_BACKENDS"] = "headless";
  environment["WLR_HEADLESS_OUTPUTS"] = hasOutput ? "1" : "0";
  environment["WLR_RENDERER"] = "pixman";
  environment["WLR_LIBINPUT_NO_DEVICES"] = "1";
  startCompositor(asAnotherUser(), {"sway", "--config", configuration.string()}, environment);
  waylandDisplay_ = textBetween(", wayland ", ".\n");
  display_ = textBetween("display ", ", wayland");
}

void WaylandDesktop::startSystemBus() {
  const auto configuration = home() / "system-bus.conf";
  std::ofstream(configuration) << systemBusConfiguration << "<listen>unix:path=" << (home() / "run/system-bus").string()
                               << "</listen></busconfig>\n";
  systemBus_.emplace(ChildProcess::Program{
      .command = {"dbus-daemon", "--config-file", configuration.string(), "--nofork", "--nopidfile", "--print-address"},
      .environment = bareEnvironment()});
  if (!systemBus_->waitForOutput("unix:path=")) throw std::runtime_error("no bus: " + systemBus_->output());
}

void WaylandDesktop::startGnome() {
  startCompositor({},
                  {"gnome-shell", "--headless", "--virtual-monitor", size(), "--wayland", "--wayland-display",
                   "wayland-private", "--mode=user"},
                  bus_.environment());
  display_ = textBetween("Using public X11 display ", ",");
  waylandDisplay_ = textBetween("Using Wayland display name '", "'");
  if (!compositor_->waitForOutput("GNOME Shell started", started_.left())) fail();
  for (const auto& file : std::filesystem::directory_iterator(home() / "run")) {
    if (file.path().filename().string().starts_with(".mutter-Xwaylandauth")) cookie_ = file.path().string();
  }
}

void WaylandDesktop::startCompositor(std::vector<std::string> command, const std::vector<std::string>& compositor,
                                     const ChildProcess::Environment& environment) {
  command.insert(command.end(), compositor.begin(), compositor.end());
  compositor_.emplace(ChildProcess::Program{.command = command, .environment = environment});
}

std::string WaylandDesktop::textBetween(const std::string& before, const std::string& after) {
  if (!compositor_->waitForOutput(before, started_.left())) fail();
  const std::size_t start = compositor_->output().find(before) + before.size();
  while (compositor_->output().find(after, start) == std::string::npos) {
    if (started_.left() == Milliseconds(0)) fail();
    std::this_thread::sleep_for(Milliseconds(5));
  }
  return compositor_->output().substr(start, compositor_->output().find(after, start) - start);
}

void WaylandDesktop::fail() {
  throw std::runtime_error("the compositor does not start: " + compositor_->output());
}

}  // namespace orvel
