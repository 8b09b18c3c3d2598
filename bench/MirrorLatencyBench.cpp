// How long it takes until a phone has the frame that shows a change of the screen.

#include "bench/Bench.hpp"
#include "bench/FullHDDesktop.hpp"
#include "bench/HostProcess.hpp"
#include "bench/MirrorPhone.hpp"
#include "bench/Samples.hpp"
#include "desktop/Painter.hpp"
#include "desktop/Picture.hpp"
#include "tools/LumaDecoder.hpp"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

namespace orvel::bench {
namespace {

using Millis = std::chrono::duration<double, std::milli>;
using SteadyClock = std::chrono::steady_clock;

constexpr int changes = extent(300, 20);
constexpr Millis shortestPause{70};
constexpr Millis longestPause{150};
constexpr double goldenRatio = 0.6180339887498949;
constexpr Millis medianLimit{12};
constexpr Millis tailLimit{40};

/// What changes: a field in the middle of the screen, between dark and light.
constexpr int fieldX = 900;
constexpr int fieldY = 500;
constexpr int fieldSide = 96;
constexpr std::uint32_t dark = 0x202020;
constexpr std::uint32_t light = 0xe0e0e0;
constexpr int middleBrightness = 128;

class Course {
 public:
  Course();
  void run();
  Verdict report() const;

 private:
  void change(int number);
  bool showsField(const phone::MirrorFrame& frame, bool isLight);

  FullHDDesktop desktop_;
  Painter painter_{desktop_.display()};
  HostProcess host_{desktop_};
  MirrorPhone phone_{hostPort, hostToken(desktop_)};
  phone::LumaDecoder decoder_;
  phone::MirrorSize size_;
  Samples delays_;
  int framesTooMany_ = 0;
};

Course::Course() {
  painter_.show(photograph(FullHDDesktop::width, FullHDDesktop::height));
  painter_.fill(fieldX, fieldY, fieldSide, fieldSide, dark);
}

void Course::run() {
  size_ = phone_.start({.width = 900, .fps = 30, .quality = 0.45});
  if (!showsField(phone_.next(), false)) throw std::runtime_error("the first frame does not show the screen");
  for (int number = 0; number < changes; ++number) change(number);
  phone_.stop();
}

/// The pauses differ, each from all others, and are the same every time.
void Course::change(int number) {
  const double place = goldenRatio * number - std::floor(goldenRatio * number);
  framesTooMany_ += static_cast<int>(phone_.countFor(shortestPause + place * (longestPause - shortestPause)));
  const bool isLight = number % 2 == 0;
  const auto begun = SteadyClock::now();
  painter_.fill(fieldX, fieldY, fieldSide, fieldSide, isLight ? light : dark);
  for (;; ++framesTooMany_) {
    const phone::MirrorFrame frame = phone_.next();
    if (!showsField(frame, isLight)) continue;
    delays_.add(Millis(frame.arrival().steady - begun).count());
    return;
  }
}

bool Course::showsField(const phone::MirrorFrame& frame, bool isLight) {
  const auto picture = decoder_.decode(frame.jpeg(), size_);
  if (!picture) throw std::runtime_error("a phone: " + picture.error().text);
  const double scale = static_cast<double>(size_.width) / FullHDDesktop::width;
  const auto middleOf = [&](int place) { return static_cast<int>(scale * (place + fieldSide / 2)); };
  const auto row = picture->row(middleOf(fieldY));
  return (row[static_cast<std::size_t>(middleOf(fieldX))] > middleBrightness) == isLight;
}

Verdict Course::report() const {
  std::printf("%-44s %8s %8s %8s %8s %8s\n", "milliseconds", "samples", "least", "median", "p95", "maximum");
  std::printf("%-44s %8zu %8.1f %8.1f %8.1f %8.1f\n", "change on the screen to frame at the phone", delays_.count(),
              delays_.least(), delays_.median(), delays_.quantile(0.95), delays_.greatest());
  if (framesTooMany_ != 0) std::printf("%d MORE FRAMES CAME than there were changes\n", framesTooMany_);
  const bool isWithin = delays_.median() < medianLimit.count() && delays_.quantile(0.95) < tailLimit.count();
  return {isWithin && framesTooMany_ == 0,
          "half of the changes are at the phone within 12 ms, 95 of 100 within 40 ms, each in one frame"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Mirror latency: from a change of the screen to the phone", [] {
    orvel::bench::Course course;
    course.run();
    return course.report();
  });
}
