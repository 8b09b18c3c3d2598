#include "desktop/VirtualDesktop.hpp"

#include <fcntl.h>
#include <poll.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <stdexcept>

namespace orvel {
namespace {

/// The line that the server writes once it is ready: the number of its display.
std::string readLine(int descriptor, Milliseconds limit) {
  const Deadline deadline(limit);
  std::string line;
  while (!line.ends_with('\n')) {
    pollfd awaited{descriptor, POLLIN, 0};
    char next = 0;
    if (poll(&awaited, 1, static_cast<int>(deadline.left().count())) <= 0) return {};
    if (read(descriptor, &next, 1) != 1) return {};
    line += next;
  }
  line.pop_back();
  return line;
}

}  // namespace

VirtualDesktop::VirtualDesktop(const std::vector<std::string>& serverArguments) {
  const std::filesystem::path runtime = home() / "run";
  std::filesystem::create_directory(runtime);
  std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
  display_ = ":" + start(serverArguments);
}

std::string VirtualDesktop::start(const std::vector<std::string>& serverArguments) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const Descriptor reader(ends[0]);
  Descriptor writer(ends[1]);
  std::vector<std::string> command{
      "Xvfb",      "-displayfd", std::to_string(writer.get()),
      "-screen",   "0",          std::to_string(width) + "x" + std::to_string(height) + "x24",
      "-nolisten", "tcp",        "-noreset",
      "-ardelay",  "600000"};
  command.insert(command.end(), serverArguments.begin(), serverArguments.end());
  server_.emplace(ChildProcess::Program{.command = command, .keptDescriptors = {writer.get()}});
  writer.close();
  std::string number = readLine(reader.get(), timeout);
  if (number.empty()) throw std::runtime_error("Xvfb does not start: " + server_->output());
  return number;
}

ChildProcess::Environment VirtualDesktop::environment() const {
  return {{"DISPLAY", display_},
          {"HOME", home().string()},
          {"XDG_RUNTIME_DIR", (home() / "run").string()},
          {"XDG_CONFIG_HOME", (home() / ".config").string()},
          {"XDG_DATA_HOME", (home() / ".local/share").string()},
          {"XDG_CACHE_HOME", (home() / ".cache").string()},
          {"XDG_SESSION_TYPE", "x11"},
          {"GDK_BACKEND", "x11"},
          {"GSK_RENDERER", "cairo"},  // the others look for graphics hardware first, and are slow without
          {"QT_QPA_PLATFORM", "xcb"},
          {"DBUS_SESSION_BUS_ADDRESS", std::nullopt},
          {"XAUTHORITY", std::nullopt},
          {"WAYLAND_DISPLAY", std::nullopt}};
}

std::optional<int> VirtualDesktop::run(const std::vector<std::string>& command) const {
  ChildProcess program({.command = command, .environment = environment()});
  return program.waitForExit();
}

void VirtualDesktop::killServer() {
  server_->signal(SIGKILL);
  server_->waitForExit();
}

}  // namespace orvel
