// What a mirrored frame costs beside ffmpeg, which captures, scales and encodes the same screen; what a mirrored screen
// costs that stands still; and what memory it takes.

#include "bench/Bench.hpp"
#include "bench/FfmpegScreen.hpp"
#include "bench/FullHDDesktop.hpp"
#include "bench/HostProcess.hpp"
#include "bench/MirrorPhone.hpp"
#include "bench/MovingScene.hpp"
#include "bench/ProcessRecord.hpp"
#include "bench/Samples.hpp"
#include "desktop/Painter.hpp"
#include "desktop/Picture.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace orvel::bench {
namespace {

using Seconds = std::chrono::duration<double>;
using Millis = std::chrono::duration<double, std::milli>;
using SteadyClock = std::chrono::steady_clock;

constexpr std::array frameRates = {12, 30};
constexpr int rounds = extent(3, 1);
constexpr Seconds roundTime{extent(2.5, 1.0)};
constexpr Seconds drawingTime{extent(1.5, 0.5)};
constexpr int warmingFrames = 10;
constexpr int framesForSize = 12;
constexpr Seconds stillTime{extent(5, 1)};
constexpr Seconds settlingTime{1};

constexpr double largestRatio = 0.30;
constexpr double smallestShareOfFrames = 0.97;
constexpr Millis mostForStillSecond{1};
constexpr std::int64_t mostMemory = 30'000'000 / 1024;  // KiB

phone::MirrorWish wishFor(int framesPerSecond) {
  return {.width = 900, .fps = framesPerSecond, .quality = 0.45};
}

double mebibytes(std::int64_t kibibytes) {
  return static_cast<double>(kibibytes) / 1024;
}

/// Whoever makes images of the screen.
struct Maker {
  pid_t process;
  std::function<std::size_t()> nextFrame;  ///< Waits for it and returns its size in bytes.
};

/// What one maker was found to do at one frame rate.
struct Findings {
  Samples rate;    ///< Frames a second.
  Samples size;    ///< KiB of a frame.
  Samples own;     ///< Milliseconds of the maker's processor time for a frame.
  Samples server;  ///< The X server's, beyond what it needs to draw.

  double cost() const { return own.median() + server.median(); }
};

class Course {
 public:
  void run();
  Verdict report() const;

 private:
  void measureStillness();
  void chooseQuality();
  void measureFrames(std::size_t rate);
  double serverShareOfDrawing() const;
  void measureOrvel(int framesPerSecond, double drawing, Findings& findings);
  void measureFfmpeg(int framesPerSecond, double drawing, Findings& findings);
  void measureRound(const Maker& maker, double drawing, Findings& findings) const;
  Maker orvel();
  bool reportStillness() const;
  bool reportMemory() const;
  bool reportFrames(std::size_t rate) const;

  FullHDDesktop desktop_;
  HostProcess host_{desktop_};
  MirrorPhone phone_{hostPort, hostToken(desktop_)};
  int quality_ = 0;  // of ffmpeg
  std::size_t stillFrames_ = 0;
  Millis stillHost_{0};
  Millis stillServer_{0};
  std::int64_t memoryBefore_ = 0;
  std::int64_t memoryMeanwhile_ = 0;
  std::int64_t memoryAfter_ = 0;
  std::array<Findings, frameRates.size()> orvel_;
  std::array<Findings, frameRates.size()> ffmpeg_;
};

void Course::run() {
  std::this_thread::sleep_for(settlingTime);
  memoryBefore_ = memoryOf(host_.pid()).resident;
  measureStillness();
  const MovingScene scene(desktop_);
  chooseQuality();
  for (std::size_t rate = 0; rate < frameRates.size(); ++rate) measureFrames(rate);
  std::this_thread::sleep_for(settlingTime);
  memoryAfter_ = memoryOf(host_.pid()).resident;
}

/// Processor time for a second of a screen on which nothing moves.
void Course::measureStillness() {
  Painter painter(desktop_.display());
  painter.show(photograph(FullHDDesktop::width, FullHDDesktop::height));
  const auto idle = processorTimeOf(desktop_.serverPid());
  std::this_thread::sleep_for(stillTime);
  const auto idleServer = processorTimeOf(desktop_.serverPid()) - idle;
  phone_.start(wishFor(30));
  phone_.next();
  phone_.countFor(settlingTime);
  const auto host = processorTimeOf(host_.pid());
  const auto server = processorTimeOf(desktop_.serverPid());
  stillFrames_ = phone_.countFor(stillTime);
  stillHost_ = (processorTimeOf(host_.pid()) - host) / stillTime.count();
  stillServer_ = (processorTimeOf(desktop_.serverPid()) - server - idleServer) / stillTime.count();
  phone_.stop();
}

std::size_t typicalSize(const std::function<std::size_t()>& nextFrame) {
  Samples sizes;
  for (int i = 0; i < framesForSize; ++i) sizes.add(static_cast<double>(nextFrame()));
  return static_cast<std::size_t>(sizes.median());
}

/// The one with which ffmpeg's images are about as large as ours.
void Course::chooseQuality() {
  phone_.start(wishFor(30));
  const std::size_t size = typicalSize(orvel().nextFrame);
  phone_.stop();
  const auto sizeWith = [&](int quality) {
    FfmpegScreen ffmpeg(desktop_, 30, quality);
    return typicalSize([&] { return ffmpeg.nextFrame(); });
  };
  int better = FfmpegScreen::bestQuality;
  int worse = FfmpegScreen::worstQuality;
  while (worse - better > 1) {
    const int middle = (better + worse) / 2;
    (sizeWith(middle) > size ? better : worse) = middle;
  }
  quality_ = worse;
}

void Course::measureFrames(std::size_t rate) {
  for (int round = 0; round < rounds; ++round) {
    const double drawing = serverShareOfDrawing();
    measureOrvel(frameRates[rate], drawing, orvel_[rate]);
    measureFfmpeg(frameRates[rate], drawing, ffmpeg_[rate]);
  }
}

/// How busy the X server is when it is only drawn on.
double Course::serverShareOfDrawing() const {
  const auto begun = SteadyClock::now();
  const auto before = processorTimeOf(desktop_.serverPid());
  std::this_thread::sleep_for(drawingTime);
  return Seconds(processorTimeOf(desktop_.serverPid()) - before) / Seconds(SteadyClock::now() - begun);
}

Maker Course::orvel() {
  return {host_.pid(), [this] { return phone_.next().jpeg().size(); }};
}

void Course::measureOrvel(int framesPerSecond, double drawing, Findings& findings) {
  phone_.start(wishFor(framesPerSecond));
  measureRound(orvel(), drawing, findings);
  memoryMeanwhile_ = std::max(memoryMeanwhile_, memoryOf(host_.pid()).resident);
  phone_.stop();
}

void Course::measureFfmpeg(int framesPerSecond, double drawing, Findings& findings) {
  FfmpegScreen ffmpeg(desktop_, framesPerSecond, quality_);
  measureRound({ffmpeg.pid(), [&] { return ffmpeg.nextFrame(); }}, drawing, findings);
}

void Course::measureRound(const Maker& maker, double drawing, Findings& findings) const {
  for (int i = 0; i < warmingFrames; ++i) maker.nextFrame();
  const auto begun = SteadyClock::now();
  const auto own = processorTimeOf(maker.process);
  const auto server = processorTimeOf(desktop_.serverPid());
  double frames = 0;
  double bytes = 0;
  for (; SteadyClock::now() - begun < roundTime; ++frames) bytes += static_cast<double>(maker.nextFrame());
  const Seconds elapsed = SteadyClock::now() - begun;
  const Millis ownTime = processorTimeOf(maker.process) - own;
  const Millis serverTime = processorTimeOf(desktop_.serverPid()) - server - elapsed * drawing;
  findings.rate.add(frames / elapsed.count());
  findings.size.add(bytes / frames / 1024);
  findings.own.add(ownTime.count() / frames);
  findings.server.add(serverTime.count() / frames);
}

bool Course::reportStillness() const {
  std::printf("A second of a still screen with a phone watching: host %.2f ms, X server %.2f ms more than idle\n",
              stillHost_.count(), stillServer_.count());
  if (stillFrames_ != 0) std::printf("  WITH %zu FRAMES, although nothing moved\n", stillFrames_);
  return stillHost_ + std::max(stillServer_, Millis(0)) <= mostForStillSecond && stillFrames_ == 0;
}

bool Course::reportMemory() const {
  const std::int64_t growth = memoryMeanwhile_ - memoryBefore_;
  std::printf("Memory of the host (RSS): %.1f MiB before the first mirror, %.1f MiB while it runs, %.1f MiB after\n\n",
              mebibytes(memoryBefore_), mebibytes(memoryMeanwhile_), mebibytes(memoryAfter_));
  return growth <= mostMemory;
}

void print(const char* name, int framesPerSecond, const Findings& findings) {
  std::printf("%-8s %6d %9.1f %12.1f %10.2f %10.2f %10.2f\n", name, framesPerSecond, findings.rate.median(),
              findings.size.median(), findings.own.median(), findings.server.median(), findings.cost());
}

bool Course::reportFrames(std::size_t rate) const {
  const Findings& orvel = orvel_[rate];
  const Findings& ffmpeg = ffmpeg_[rate];
  print("Orvel", frameRates[rate], orvel);
  print("ffmpeg", frameRates[rate], ffmpeg);
  const double ratio = orvel.cost() / ffmpeg.cost();
  std::printf("  Orvel's frames cost %.2f of ffmpeg's (limit %.2f)\n", ratio, largestRatio);
  return ratio <= largestRatio && orvel.rate.median() >= smallestShareOfFrames * frameRates[rate];
}

Verdict Course::report() const {
  bool isWithin = reportStillness();
  isWithin = reportMemory() && isWithin;
  std::printf("Milliseconds of processor time for a frame; ffmpeg with -q:v %d\n", quality_);
  std::printf("%-8s %6s %9s %12s %10s %10s %10s\n", "", "asked", "frames/s", "KiB a frame", "own", "X server", "sum");
  for (std::size_t rate = 0; rate < frameRates.size(); ++rate) isWithin = reportFrames(rate) && isWithin;
  return {
      isWithin,
      "at 12 and 30 frames a second, which come, a frame costs at most 0.30 of ffmpeg's; a second of a still screen "
      "takes at most 1 ms; the mirror takes at most 30 MB"};
}

Verdict measure() {
  Course course;
  course.run();
  return course.report();
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Mirror: what a frame, a still screen and the memory of it cost",
                                orvel::bench::measure);
}
