// What Orvel costs in the tray while its panel is closed, before it was ever opened and afterwards, beside a program
// that has an icon and an empty window and nothing else.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/Onlooker.hpp"
#include "bench/ProcessRecord.hpp"
#include "bench/TrayLogin.hpp"
#include "bench/Wakeups.hpp"
#include "desktop/AccessibleProgram.hpp"
#include "desktop/DesktopView.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

namespace orvel::bench {
namespace {

using std::chrono::milliseconds;

constexpr int fewOpenings = extent(10, 2);
constexpr int manyOpenings = extent(200, 4);
constexpr int openingsBetweenLooks = extent(50, 2);
constexpr double mostMemory = 40;
constexpr std::int64_t mostGrowth = 512;
constexpr int timersOfOpenPanel = 2;
constexpr milliseconds settlingTime{2000};
constexpr milliseconds betweenClicks{500};
constexpr milliseconds lookInterval{2};

void waitUntil(const char* what, const std::function<bool()>& isTrue) {
  const Deadline deadline(timeout);
  while (!isTrue()) {
    if (deadline.left() == Milliseconds(0)) throw std::runtime_error(std::string("in vain waited until ") + what);
    std::this_thread::sleep_for(lookInterval);
  }
}

double megabytes(std::int64_t kibibytes) {
  return static_cast<double>(kibibytes) * 1024 / 1e6;
}

/// Prints it, and says whether it is within the limit.
bool printMemory(const char* when, pid_t process) {
  std::this_thread::sleep_for(settlingTime);
  const MemoryRecord memory = memoryOf(process);
  std::printf("  %-44s RSS %5.1f MB, PSS %5.1f, of its own %5.1f\n", when, megabytes(memory.resident),
              megabytes(memory.proportional), megabytes(memory.privateDirty));
  return megabytes(memory.resident) <= mostMemory;
}

/// Somebody who opens and closes the panel of the host.
class PanelUser {
 public:
  PanelUser(const TrayLogin& login, pid_t host, bool hasScreenReader)
      : login_(login),
        host_(host),
        hasScreenReader_(hasScreenReader),
        bus_(MessageBus::open(login.bus.address(), TimeLimit(timeout))) {
    if (!bus_) throw std::runtime_error("there is no bus");
    if (!login.tray.waitForIcon()) throw std::runtime_error("the host has no icon");
  }

  /// As the applications menu does.
  void open() {
    const BusCall activate{.destination = "app.orvel.Orvel",
                           .path = "/app/orvel/Orvel",
                           .interface = "org.freedesktop.Application",
                           .method = "Activate",
                           .arguments = g_variant_new("(a{sv})", nullptr)};
    if (!bus_->call(activate, TimeLimit(timeout))) throw std::runtime_error("the host does not open its panel");
    waitUntil("the panel has the keyboard", [this] {
      const auto windows = login_.windowManager.windowsOf("orvel");
      return !windows.empty() && windows.back() == login_.windowManager.activeWindow();
    });
  }

  void showCode() {
    const Picture before = view_.picture();
    onlooker_.press(Onlooker::Key::tab);
    onlooker_.press(Onlooker::Key::space);
    std::this_thread::sleep_for(betweenClicks);
    if (view_.picture() == before) throw std::runtime_error("the panel shows no code");
  }

  /// Has a screen reader, if there is one, read out all that the panel shows.
  void listen() {
    if (!hasScreenReader_) return;
    const AccessibleProgram panel(login_.bus, host_);
    waitUntil("the panel is read out", [&panel] { return panel.find("push button", "Quit").has_value(); });
  }

  void close() {
    onlooker_.press(Onlooker::Key::escape);
    waitUntil("the panel is closed", [this] { return login_.windowManager.windowsOf("orvel").empty(); });
  }

 private:
  const TrayLogin& login_;
  const pid_t host_;
  const bool hasScreenReader_;
  const std::optional<MessageBus> bus_;
  const DesktopView view_{login_.desktop.display()};
  Onlooker onlooker_{login_.desktop.display()};
};

void showBareTray(const TrayLogin& login) {
  ChildProcess bare({.command = {ORVEL_BARE_TRAY}, .environment = login.bus.environment()});
  const auto icon = login.tray.waitForIcon();
  if (!icon) throw std::runtime_error("the bare program has no icon");
  printMemory("bare, window never opened", bare.pid());
  Onlooker user(login.desktop.display());
  for (int i = 0; i < 2 * fewOpenings; ++i) {
    user.click(icon->centre());
    std::this_thread::sleep_for(betweenClicks);
  }
  printMemory("bare, window opened 10 times, now closed", bare.pid());
}

/// Whether the memory has stopped to grow in the later half of many openings.
bool measureGrowth(PanelUser& user, pid_t host) {
  std::int64_t middle = 0;
  for (int i = 1; i <= manyOpenings; ++i) {
    user.open();
    user.listen();
    user.close();
    if (i % openingsBetweenLooks != 0) continue;
    std::this_thread::sleep_for(settlingTime);
    const std::int64_t anonymous = memoryOf(host).anonymous;
    std::printf("  %s%d", i == openingsBetweenLooks ? "anonymous memory, KiB, after " : "after ", i);
    std::printf(": %lld%s", static_cast<long long>(anonymous), i == manyOpenings ? "\n" : ",");
    if (i == manyOpenings / 2) middle = anonymous;
  }
  const std::int64_t growth = memoryOf(host).anonymous - middle;
  std::printf("  growth in the later %d openings: %lld KiB (limit %lld)\n", manyOpenings / 2,
              static_cast<long long>(growth), static_cast<long long>(mostGrowth));
  return growth <= mostGrowth;
}

/// Leaves the panel closed.
bool measureMemory(PanelUser& user, pid_t host) {
  const bool isSmallBefore = printMemory("Orvel, panel never opened", host);
  for (int i = 0; i < fewOpenings; ++i) {
    user.open();
    user.showCode();
    user.listen();
    user.close();
  }
  const bool isSmallAfter = printMemory("Orvel, panel opened 10 times, now closed", host);
  return isSmallBefore && isSmallAfter;
}

bool measureSleep(PanelUser& user, pid_t host) {
  const bool sleepsAfter = watchSleep(host, "host whose panel is closed again");
  user.open();
  const bool sleepsMeanwhile = watchSleep(host, "host whose panel is open", timersOfOpenPanel);
  user.close();
  return sleepsAfter && sleepsMeanwhile;
}

bool measureWithoutScreenReader() {
  std::printf("Without a screen reader\n");
  const TrayLogin login(TrayHost::Kind::tint2);
  showBareTray(login);
  HostProcess host(login.bus.environment());
  PanelUser user(login, host.pid(), false);
  const bool sleptBefore = watchSleep(host.pid(), "host whose panel was never opened");
  const bool isSmall = measureMemory(user, host.pid());
  const bool growsNoMore = measureGrowth(user, host.pid());
  const bool sleepsAfter = measureSleep(user, host.pid());
  host.stop();
  return sleptBefore && isSmall && growsNoMore && sleepsAfter;
}

bool measureWithScreenReader() {
  std::printf("\nWith a screen reader\n");
  const TrayLogin login(TrayHost::Kind::tint2);
  if (!login.bus.switchOnAccessibility()) throw std::runtime_error("accessibility cannot be switched on");
  showBareTray(login);
  HostProcess host(login.bus.environment());
  PanelUser user(login, host.pid(), true);
  const bool isSmall = measureMemory(user, host.pid());
  const bool growsNoMore = measureGrowth(user, host.pid());
  host.stop();
  return isSmall && growsNoMore;
}

Verdict measure() {
  const bool isGoodWithout = measureWithoutScreenReader();
  const bool isGoodWith = measureWithScreenReader();
  return {isGoodWithout && isGoodWith,
          "with its panel closed the host takes at most 40 MB, which openings do not add to, and wakes for its "
          "permission timer only; open, for one more"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("In the tray: memory and wake-ups with the panel closed", orvel::bench::measure);
}
