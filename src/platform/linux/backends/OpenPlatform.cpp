#include "base/Guarded.hpp"
#include "platform/LeavableThread.hpp"
#include "platform/Platform.hpp"
#include "platform/linux/LinuxPlatform.hpp"
#include "platform/linux/bus/MessageBus.hpp"
#include "platform/linux/files/Files.hpp"
#include "platform/linux/x11/X11BackendKind.hpp"

#include <malloc.h>
#include <sys/resource.h>

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr rlim_t mostDescriptors = 65536;
constexpr std::chrono::seconds silentBusTimeout{1};
constexpr int largestKeptBlock = 256 * 1024;

std::optional<BackendKind> chosenBackend() {
  // In the order of preference.
  const std::array backendKinds{x11BackendKind()};
  return chooseBackend(backendKinds);
}

bool isWaylandPresent() {
  return !environmentVariable("WAYLAND_DISPLAY").empty();
}

std::string needsDesktop(const std::string& reason) {
  return "Orvel needs a desktop to work on: " + reason;
}

std::string noBackend() {
  if (isWaylandPresent()) {
    return needsDesktop("it does not work on Wayland yet, and this is a Wayland session. Log in to an X11 session.");
  }
  return needsDesktop(
      "there is none here, as neither DISPLAY nor WAYLAND_DISPLAY is set. Start it from the "
      "applications menu or from a terminal of your desktop.");
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

std::optional<std::string> missingDesktop() {
  const auto kind = chosenBackend();
  if (!kind) return noBackend();
  const auto reason = kind->missing();
  return reason ? std::optional(needsDesktop(*reason)) : std::nullopt;
}

std::vector<std::string> prepareToolkit() {
  keepToolkitOffUnresponsiveBus(TimeLimit(silentBusTimeout));
  // The panel's look is ours. A theme of the desktop's would bring another whole toolkit into this process.
  QGuiApplication::setDesktopSettingsAware(false);
  const auto kind = chosenBackend();
  if (!kind) return {};
  return {"-platform", kind->toolkitPlatform};
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  const rlimit openFiles = allowManyConnections();
  giveMemoryBack();
  const auto kind = chosenBackend();
  if (!kind) return noBackend();
  auto backend = kind->open();
  if (!backend) return needsDesktop(kind->missing().value_or("it does not answer."));
  auto platform = std::make_unique<LinuxPlatform>(std::move(backend), openFiles);
  if (!platform->listen()) return needsDesktop("the system has no thread left to follow it with.");
  return platform;
}

std::optional<std::string> inputObstacle() {
  const auto kind = chosenBackend();
  if (!kind) {
    return isWaylandPresent() ? std::optional(noticeOnWayland().explanation) : std::nullopt;
  }
  const auto answer = std::make_shared<Guarded<std::optional<std::string>>>();
  {
    // The server may hang.
    LeavableThread asking;
    asking.start([ask = kind->inputObstacle, answer] {
      auto obstacle = ask();
      answer->withLock([&](auto& known) { known = std::move(obstacle); });
    });
  }
  return answer->withLock([](const auto& known) { return known; });
}

}  // namespace orvel
