#include "desktop/WaylandDesktop.hpp"

#include <csignal>
#include <fstream>
#include <stdexcept>
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

std::string size() {
  return std::to_string(WaylandDesktop::width) + "x" + std::to_string(WaylandDesktop::height);
}

}  // namespace

WaylandDesktop::WaylandDesktop(Kind kind, bool hasOutput) : kind_(kind), bus_(privateHome(), bareEnvironment()) {
  if (kind == Kind::sway) {
    startSway(hasOutput);
  } else {
    startSystemBus();
    startGnome();
  }
}

WaylandDesktop::~WaylandDesktop() {
  compositor_->signal(SIGTERM);
  compositor_->waitForExit(patience);
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
  // It does not start for root.
  std::vector<std::string> command{"unshare", "--user", "--map-user=1000", "--map-group=1000"};
  startCompositor(std::move(command), {"sway", "--config", configuration.string()}, environment);
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
  if (!compositor_->waitForOutput("GNOME Shell started", startLimit)) fail();
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
  if (!compositor_->waitForOutput(before, startLimit)) fail();
  const std::size_t start = compositor_->output().find(before) + before.size();
  const Deadline deadline(patience);
  while (compositor_->output().find(after, start) == std::string::npos) {
    if (deadline.left() == Milliseconds(0)) fail();
    std::this_thread::sleep_for(Milliseconds(5));
  }
  return compositor_->output().substr(start, compositor_->output().find(after, start) - start);
}

void WaylandDesktop::fail() {
  throw std::runtime_error("the compositor does not start: " + compositor_->output());
}

}  // namespace orvel
