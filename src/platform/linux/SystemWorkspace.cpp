#include "platform/linux/SystemWorkspace.hpp"

#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/icons/IconImage.hpp"

#include <cmath>
#include <utility>

namespace orvel {
namespace {

constexpr double largestIcon = 1024;
constexpr int mostDrawings = 16;  // of one icon, until one shows something

}  // namespace

SystemWorkspace::SystemWorkspace(DesktopWindows& windows, ActivationTokens& tokens, ThemeSettings& theme,
                                 DesktopEntries& entries, const DataFolders& folders, const rlimit& openFiles)
    : windows_(windows),
      entries_(entries),
      programs_(windows, entries),
      launcher_(tokens, openFiles),
      themeChoice_(theme),
      themes_(folders) {}

void SystemWorkspace::observeActivation(std::function<void()> handler) {
  windows_.observeActivation(std::move(handler));
}

std::optional<std::vector<RunningApplication>> SystemWorkspace::runningApplications() {
  auto programs = programs_.read();
  if (!programs) return std::nullopt;
  std::vector<RunningApplication> applications;
  for (WindowedProgram& program : *programs) {
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
  windows_.activate(windowsOf(application));
}

void SystemWorkspace::terminate(const RunningApplication& application) {
  windows_.close(windowsOf(application));
}

void SystemWorkspace::open(const std::string& path) {
  const auto entry = entries_.read(path);
  if (entry && entry->isUsable) launcher_.launch(path);
}

std::vector<WindowID> SystemWorkspace::windowsOf(const RunningApplication& application) const {
  auto programs = programs_.read();
  if (!programs) return {};
  for (WindowedProgram& program : *programs) {
    if (program.instance == application.instance && program.identifier == application.identifier) {
      return std::move(program.windows);
    }
  }
  return {};
}

}  // namespace orvel
