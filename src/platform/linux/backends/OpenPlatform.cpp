#include "base/Guarded.hpp"
#include "platform/LeavableThread.hpp"
#include "platform/Platform.hpp"
#include "platform/linux/LinuxPlatform.hpp"
#include "platform/linux/bus/MessageBus.hpp"
#include "platform/linux/files/Files.hpp"
#include "platform/linux/x11/X11Backend.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <malloc.h>
#include <sys/resource.h>

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace orvel {
namespace {

constexpr rlim_t mostDescriptors = 65536;
constexpr std::chrono::seconds silentBusTimeout{1};
constexpr int largestKeptBlock = 256 * 1024;

/// A kind of desktop that Orvel can work on, and how its backend is reached.
struct BackendKind {
  /// Whether this login has such a desktop, by its environment.
  bool (*isPresent)();
  /// Why it does not answer; nothing when it does.
  std::optional<std::string> (*missing)();
  /// The toolkit's plugin that shows windows on it.
  const char* toolkitPlatform;
  /// Null when it does not answer.
  std::unique_ptr<Backend> (*open)();
  /// Why nothing that phones send moves anything there. Waits for the desktop, which may hang.
  std::optional<std::string> (*inputObstacle)();
};

std::string x11Display() {
  return environmentVariable("DISPLAY");
}

bool isX11Present() {
  return !x11Display().empty();
}

std::optional<std::string> missingX11() {
  if (X11Connection::open(x11Display())) return std::nullopt;
  return "no X display answers at \"" + x11Display() + "\".";
}

std::unique_ptr<Backend> openX11() {
  return X11Backend::open(x11Display());
}

std::optional<std::string> inputObstacleOfX11() {
  // Another computer's display, such as that of whoever has logged in from there, says nothing of this one.
  return x11Display().starts_with(':') ? X11Backend::inputObstacle(x11Display()) : std::nullopt;
}

/// In the order of preference. X11 stands for Wayland too: there only Xwayland lets a window open beside an icon.
constexpr std::array backendKinds{
    BackendKind{.isPresent = isX11Present,
                .missing = missingX11,
                .toolkitPlatform = "xcb",
                .open = openX11,
                .inputObstacle = inputObstacleOfX11},
};

/// Null where this login has no desktop that Orvel can work on.
const BackendKind* chosenBackend() {
  const auto kind =
      std::ranges::find_if(backendKinds, [](const BackendKind& candidate) { return candidate.isPresent(); });
  return kind == backendKinds.end() ? nullptr : &*kind;
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
  const BackendKind* kind = chosenBackend();
  if (kind == nullptr) return noBackend();
  const auto reason = kind->missing();
  return reason ? std::optional(needsDesktop(*reason)) : std::nullopt;
}

std::vector<std::string> prepareToolkit() {
  keepToolkitOffUnresponsiveBus(TimeLimit(silentBusTimeout));
  // The panel's look is ours. A theme of the desktop's would bring another whole toolkit into this process.
  QGuiApplication::setDesktopSettingsAware(false);
  const BackendKind* kind = chosenBackend();
  return kind == nullptr ? std::vector<std::string>() : std::vector<std::string>{"-platform", kind->toolkitPlatform};
}

std::variant<std::unique_ptr<Platform>, std::string> openPlatform() {
  const rlimit openFiles = allowManyConnections();
  giveMemoryBack();
  const BackendKind* kind = chosenBackend();
  if (kind == nullptr) return noBackend();
  auto backend = kind->open();
  if (!backend) return needsDesktop(kind->missing().value_or("it does not answer."));
  auto platform = std::make_unique<LinuxPlatform>(std::move(backend), openFiles);
  if (!platform->listen()) return needsDesktop("the system has no thread left to follow it with.");
  return platform;
}

std::optional<std::string> inputObstacle() {
  const BackendKind* kind = chosenBackend();
  if (kind == nullptr) {
    return isWaylandPresent() ? std::optional(X11TrustCheck::noticeOnWayland().explanation) : std::nullopt;
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
