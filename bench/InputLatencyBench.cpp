// How long input takes from the phone's socket to another program on the desktop, beside input that the benchmark posts
// into the same desktop itself.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/RawPhone.hpp"
#include "bench/Samples.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/X11Witness.hpp"
#include "tools/PhoneFrames.hpp"

#include <xcb/xtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <stdexcept>
#include <thread>

namespace orvel::bench {
namespace {

using Microseconds = std::chrono::duration<double, std::micro>;
using SteadyClock = std::chrono::steady_clock;

constexpr int inputsOfEachKind = extent(2500, 200);
constexpr Microseconds shortestPause{2000};
constexpr Microseconds longestPause{4000};
constexpr Microseconds limit{1000};
constexpr std::uint8_t leftButton = 1;
constexpr int coarsePixel = 1;

/// Posts input without Orvel. Threads: one at a time.
class DirectInput {
 public:
  explicit DirectInput(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("the desktop does not let us in");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  ~DirectInput() { xcb_disconnect(connection_); }
  DirectInput(const DirectInput&) = delete;
  DirectInput& operator=(const DirectInput&) = delete;

  void move(int x, int y) {
    post(XCB_MOTION_NOTIFY, 0, x, y);
    xcb_flush(connection_);
  }

  void click() {
    post(XCB_BUTTON_PRESS, leftButton, 0, 0);
    post(XCB_BUTTON_RELEASE, leftButton, 0, 0);
    xcb_flush(connection_);
  }

 private:
  void post(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
};

class Course {
 public:
  void run();
  Verdict report() const;

 private:
  using Kind = X11Witness::Kind;

  struct Place {
    double nx;
    double ny;
    int x;
    int y;
  };

  Place nextPlace();
  void rest();
  void expect(Samples& samples, const std::function<void()>& send, Kind kind, std::size_t count);
  void expectMotionTo(const Place& place, Samples& samples, const std::function<void()>& send);
  void expectClick(Samples& samples, const std::function<void()>& send);

  VirtualDesktop desktop_;
  X11Witness witness_{desktop_.display()};
  DirectInput direct_{desktop_.display()};
  HostProcess host_{desktop_};
  RawPhone phone_{hostPort};
  std::mt19937 random_;
  Samples orvelMotion_;
  Samples directMotion_;
  Samples orvelClick_;
  Samples directClick_;
};

void Course::run() {
  phone_.pair(hostToken(desktop_), "Phone");
  for (int i = 0; i < inputsOfEachKind; ++i) {
    const Place first = nextPlace();
    expectMotionTo(first, orvelMotion_, [&] { phone_.sendFrame(phone::moveAbsoluteFrame(first.nx, first.ny)); });
    const Place second = nextPlace();
    expectMotionTo(second, directMotion_, [&] { direct_.move(second.x, second.y); });
    expectClick(orvelClick_, [&] { phone_.sendFrame(phone::clickFrame(phone::MouseButton::left, 1)); });
    expectClick(directClick_, [&] { direct_.click(); });
  }
}

/// A place on the screen, far enough from the edges, that is not the one before.
Course::Place Course::nextPlace() {
  std::uniform_real_distribution<double> fraction(0.1, 0.9);
  const double nx = fraction(random_);
  const double ny = fraction(random_);
  return {nx, ny, static_cast<int>(nx * VirtualDesktop::width), static_cast<int>(ny * VirtualDesktop::height)};
}

/// Waits a little, never equally long, so as not to fall into step with anything.
void Course::rest() {
  std::uniform_real_distribution<double> pause(shortestPause.count(), longestPause.count());
  std::this_thread::sleep_for(Microseconds(pause(random_)));
}

void Course::expect(Samples& samples, const std::function<void()>& send, Kind kind, std::size_t count) {
  rest();
  witness_.forget();
  const auto sent = SteadyClock::now();
  send();
  const bool came = witness_.waitForCount(1);
  samples.add(Microseconds(SteadyClock::now() - sent).count());
  if (!came || witness_.inputs().front().kind != kind || !witness_.waitForCount(count)) {
    throw std::runtime_error("the desktop did not get the input that was sent");
  }
}

void Course::expectMotionTo(const Place& place, Samples& samples, const std::function<void()>& send) {
  expect(samples, send, Kind::motion, 1);
  const X11Witness::Input& motion = witness_.inputs().front();
  if (std::abs(motion.x - place.x) > coarsePixel || std::abs(motion.y - place.y) > coarsePixel) {
    throw std::runtime_error("the pointer went astray");
  }
}

void Course::expectClick(Samples& samples, const std::function<void()>& send) {
  expect(samples, send, Kind::buttonDown, 2);
}

Verdict Course::report() const {
  struct Row {
    const char* name;
    const Samples& samples;
  };
  const std::array rows{Row{"motion by Orvel", orvelMotion_}, Row{"motion, posted directly", directMotion_},
                        Row{"click by Orvel", orvelClick_}, Row{"click, posted directly", directClick_}};
  std::printf("%-26s %8s %10s %10s %10s\n", "microseconds", "inputs", "median", "p99", "maximum");
  for (const Row& row : rows) {
    std::printf("%-26s %8zu %10.0f %10.0f %10.0f\n", row.name, row.samples.count(), row.samples.median(),
                row.samples.quantile(0.99), row.samples.greatest());
  }
  const bool isWithin = orvelMotion_.quantile(0.99) < limit.count() && orvelClick_.quantile(0.99) < limit.count();
  return {isWithin, "99 of 100 motions and clicks reach another program within 1 ms"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Input latency: from the phone's socket to another program on the desktop", [] {
    orvel::bench::Course course;
    course.run();
    return course.report();
  });
}
