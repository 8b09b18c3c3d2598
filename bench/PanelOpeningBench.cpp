// How long a person waits for Orvel's icon after its start, and for its panel after a click on the icon, beside a
// program that has an icon and an empty window and nothing else.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/Onlooker.hpp"
#include "bench/Samples.hpp"
#include "bench/TrayLogin.hpp"
#include "desktop/DesktopView.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <utility>

namespace orvel::bench {
namespace {

constexpr int rounds = extent(10, 2);
constexpr double longestStart = 0.25;
constexpr double longestOpening = 0.1;

/// Longer than a double click, of which the second half counts for nothing.
constexpr std::chrono::milliseconds betweenClicks{500};

/// Long enough for a window to be there, however slow the machine is.
constexpr std::chrono::milliseconds rehearsalTime{2000};

double secondsSince(Onlooker::Moment begun, Onlooker::Moment end) {
  return std::chrono::duration<double>(end - begun).count();
}

/// What of the screen outside the tray differs.
Rect difference(const Picture& before, const Picture& after, const Rect& tray) {
  int left = after.width;
  int top = after.height;
  int right = -1;
  int bottom = -1;
  for (int y = 0; y < static_cast<int>(tray.origin.y); ++y) {
    for (int x = 0; x < after.width; ++x) {
      if (before.at(x, y) == after.at(x, y)) continue;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x);
      bottom = std::max(bottom, y);
    }
  }
  if (right < 0) throw std::runtime_error("a click on the icon opens nothing");
  return {{double(left), double(top)}, {double(right - left + 1), double(bottom - top + 1)}};
}

/// A program with an icon, and how long it made a person wait.
class Contender {
 public:
  Contender(const char* name, TrayLogin& login, ChildProcess::Program program)
      : name_(name), login_(login), onlooker_(login.desktop.display()), program_(std::move(program)) {}

  /// Finds out where its icon and its window will be.
  void rehearse() {
    const DesktopView view(login_.desktop.display());
    ChildProcess process(program_);
    const auto icon = login_.tray.waitForIcon();
    if (!icon) throw std::runtime_error("there is no icon: " + process.output());
    icon_ = icon->centre();
    const Picture before = view.picture();
    onlooker_.click(icon_);
    std::this_thread::sleep_for(rehearsalTime);
    window_ = difference(before, view.picture(), login_.tray.place());
    end(process);
  }

  void compete() {
    onlooker_.lookAt(login_.tray.place());
    const auto begun = std::chrono::steady_clock::now();
    ChildProcess process(program_);
    start_.add(secondsSince(begun, onlooker_.seeNewLook()));
    std::this_thread::sleep_for(betweenClicks);
    firstOpening_.add(open());
    secondOpening_.add(open());
    end(process);
  }

  bool print() const {
    const auto ms = [](double seconds) { return seconds * 1000; };
    std::printf("  %-8s %8.1f (%5.1f to %5.1f) %8.1f (%5.1f to %5.1f) %8.1f (%5.1f to %5.1f)\n", name_,
                ms(start_.median()), ms(start_.least()), ms(start_.greatest()), ms(firstOpening_.median()),
                ms(firstOpening_.least()), ms(firstOpening_.greatest()), ms(secondOpening_.median()),
                ms(secondOpening_.least()), ms(secondOpening_.greatest()));
    return start_.median() <= longestStart && firstOpening_.median() <= longestOpening &&
           secondOpening_.median() <= longestOpening;
  }

 private:
  /// From the click until the window is painted. Closes it again.
  double open() {
    onlooker_.lookAt(window_);
    const auto clicked = std::chrono::steady_clock::now();
    onlooker_.click(icon_);
    const double time = secondsSince(clicked, onlooker_.seeNewLook());
    std::this_thread::sleep_until(clicked + betweenClicks);
    onlooker_.click(icon_);
    onlooker_.seeNewLook();
    std::this_thread::sleep_until(clicked + 2 * betweenClicks);
    return time;
  }

  void end(ChildProcess& process) const {
    process.signal(SIGTERM);
    if (!process.waitForExit() || !login_.tray.waitForNoIcon()) throw std::runtime_error("a program does not end");
  }

  const char* const name_;
  TrayLogin& login_;
  Onlooker onlooker_;
  const ChildProcess::Program program_;
  Point icon_;
  Rect window_;
  Samples start_;
  Samples firstOpening_;
  Samples secondOpening_;
};

bool measureIn(TrayHost::Kind kind) {
  TrayLogin login(kind);
  const auto environment = login.bus.environment();
  Contender orvel("Orvel", login, hostProgram(environment, "--background"));
  Contender bare("bare", login, {.command = {ORVEL_BARE_TRAY}, .environment = environment});
  orvel.rehearse();
  bare.rehearse();
  for (int i = 0; i < rounds; ++i) {
    orvel.compete();
    bare.compete();
  }
  std::printf("In %s, milliseconds, median (least to greatest)\n", nameOf(kind));
  std::printf("  %-8s %25s %25s %25s\n", "", "start to icon", "first opening", "second opening");
  const bool isFast = orvel.print();
  bare.print();
  return isFast;
}

Verdict measure() {
  const bool isFastEmbedded = measureIn(TrayHost::Kind::tint2);
  const bool isFastOnBus = measureIn(TrayHost::Kind::lxqt);
  return {isFastEmbedded && isFastOnBus,
          "the icon is there 250 ms after the start, and the panel 100 ms after a click"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Opening: from the start to the icon, and from a click to the panel",
                                orvel::bench::measure);
}
