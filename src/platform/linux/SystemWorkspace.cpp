#include "platform/linux/SystemWorkspace.hpp"

#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/icons/IconImage.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvel {
namespace {

constexpr double largestIcon = 1024;
constexpr int mostDrawings = 16;  // of one icon, until one shows something

/// In the order of the stack, the lowest first. Those that it does not name are left out, unless it names none of them.
std::vector<xcb_window_t> inOrder(const std::vector<xcb_window_t>& windows, std::vector<xcb_window_t> stack) {
  std::erase_if(
      stack, [&](xcb_window_t window) { return std::find(windows.begin(), windows.end(), window) == windows.end(); });
  return stack.empty() ? windows : stack;
}

}  // namespace

SystemWorkspace::SystemWorkspace(X11Connection& connection, DesktopEntries& entries, const DataFolders& folders,
                                 const rlimit& openFiles)
    : root_(connection.root()),
      atoms_(connection),
      entries_(entries),
      windows_(connection, atoms_),
      commands_(connection, atoms_),
      programs_(windows_, entries),
      time_(connection),
      notice_(connection, atoms_),
      launcher_(time_, notice_, openFiles),
      themeChoice_(connection),
      themes_(folders) {}

void SystemWorkspace::observeActivation(std::function<void()> handler) {
  handler_.withLock([&](std::function<void()>& observer) { observer = std::move(handler); });
}

std::optional<std::vector<RunningApplication>> SystemWorkspace::runningApplications() {
  std::vector<RunningApplication> applications;
  for (WindowedProgram& program : programs_.read()) {
    if (program.location) launcher_.hasStarted(*program.location);
    applications.push_back({.instance = program.instance,
                            .identifier = std::move(program.identifier),
                            .name = std::move(program.name),
                            .location = std::move(program.location),
                            .isRegular = program.isRegular});
  }
  return applications;
}

std::optional<std::string> SystemWorkspace::location(const std::string& identifier) {
  auto found = entries_.find(identifier);
  return found ? std::optional(std::move(found->path)) : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> SystemWorkspace::icon(const std::string& path, double size) {
  if (!(size >= 1 && size <= largestIcon)) return std::nullopt;
  const int pixels = static_cast<int>(std::lround(size));
  const auto entry = entries_.read(path);
  if (!entry || entry->icon.empty()) return std::nullopt;
  if (entry->icon.starts_with('/')) return drawIcon(entry->icon, pixels);
  std::optional<std::vector<std::uint8_t>> drawn;
  int tried = 0;
  themes_.find(entry->icon, pixels, themeChoice_.name(), [&](const std::string& file) {
    drawn = drawIcon(file, pixels);
    return drawn || ++tried == mostDrawings;
  });
  return drawn;
}

void SystemWorkspace::activate(const RunningApplication& application) {
  const auto windows = inOrder(windowsOf(application), windows_.stacking());
  if (windows.empty()) return;
  const xcb_window_t top = windows.back();
  const auto time = time_.now();
  // Some window managers would leave the user where he is, and some would bring the window over.
  const auto desktop = windows_.desktopOf(top);
  if (desktop && desktop != windows_.currentDesktop()) commands_.showDesktop(*desktop, time);
  for (const xcb_window_t window : windows) commands_.raise(window);
  commands_.activate(top, time);
  commands_.flush();
}

void SystemWorkspace::terminate(const RunningApplication& application) {
  const auto time = time_.now();
  for (const xcb_window_t window : windowsOf(application)) {
    if (windows_.canBeAskedToClose(window)) commands_.close(window, time);
  }
  commands_.flush();
}

void SystemWorkspace::open(const std::string& path) {
  const auto entry = entries_.read(path);
  if (entry && entry->isUsable) launcher_.launch(path);
}

std::vector<xcb_window_t> SystemWorkspace::windowsOf(const RunningApplication& application) const {
  for (WindowedProgram& program : programs_.read()) {
    if (program.instance == application.instance && program.identifier == application.identifier) {
      return std::move(program.windows);
    }
  }
  return {};
}

void SystemWorkspace::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & x11EventTypeMask) != XCB_PROPERTY_NOTIFY) return;
  const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (change.window != root_ || change.atom != atoms_.activeWindow) return;
  const auto handler = handler_.withLock([](const std::function<void()>& observer) { return observer; });
  if (handler) handler();
}

}  // namespace orvel
