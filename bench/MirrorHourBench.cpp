// Whether the host grows while it mirrors: an hour of frames in a minute.

#include "bench/Bench.hpp"
#include "bench/MirrorPhone.hpp"
#include "bench/ProcessRecord.hpp"
#include "bench/RealServer.hpp"
#include "bench/Samples.hpp"
#include "bench/ServerProcess.hpp"

#include <chrono>
#include <cstdio>

namespace orvel::bench {
namespace {

constexpr int framesOfAnHour = extent(30 * 3600, 3000);
constexpr int warmingFrames = extent(10'000, 500);
constexpr int framesOfSamples = extent(10'000, 500);
constexpr int framesBetweenSamples = extent(1'000, 100);
constexpr double mostGrowth = 512;  // KiB

/// What the memory was while some frames were sent, in KiB. Frames on their way are in it, so it is never quite still.
struct Memory {
  Samples resident;
  Samples own;
};

class Course {
 public:
  void run();
  Verdict report() const;

 private:
  void take(int frames);
  Memory sample();

  const ServerProcess server_{runRealServer};
  MirrorPhone phone_{server_.tally().port, realServerToken};
  Memory early_;
  Memory late_;
  double bytes_ = 0;
  std::chrono::duration<double> time_{0};
};

void Course::run() {
  const auto begun = std::chrono::steady_clock::now();
  phone_.start({.width = 640, .fps = 30, .quality = 0.45});
  take(warmingFrames);
  early_ = sample();
  take(framesOfAnHour - warmingFrames - 2 * framesOfSamples);
  late_ = sample();
  time_ = std::chrono::steady_clock::now() - begun;
  phone_.stop();
}

void Course::take(int frames) {
  for (int i = 0; i < frames; ++i) bytes_ += static_cast<double>(phone_.next().jpeg().size());
}

Memory Course::sample() {
  Memory memory;
  for (int frames = 0; frames < framesOfSamples; frames += framesBetweenSamples) {
    take(framesBetweenSamples);
    const MemoryRecord now = memoryOf(server_.pid());
    memory.resident.add(static_cast<double>(now.resident));
    memory.own.add(static_cast<double>(now.anonymous));
  }
  return memory;
}

Verdict Course::report() const {
  std::printf("%d frames of %.1f KiB, an hour of 30 a second, came in %.0f s: %.0f a second\n\n", framesOfAnHour,
              bytes_ / framesOfAnHour / 1024, time_.count(), framesOfAnHour / time_.count());
  std::printf("%-26s %14s %14s %14s\n", "KiB", "after 10,000", "at the end", "growth");
  const auto print = [](const char* name, const Samples& early, const Samples& late) {
    const double growth = late.median() - early.median();
    std::printf("%-26s %14.0f %14.0f %14.0f\n", name, early.median(), late.median(), growth);
    return growth <= mostGrowth;
  };
  const bool residentStays = print("RSS", early_.resident, late_.resident);
  const bool ownStays = print("of its own (anonymous)", early_.own, late_.own);
  return {residentStays && ownStays, "in an hour of 30 frames a second the host grows by 512 KiB at most"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Mirror hour: whether memory grows while the screen is mirrored", [] {
    orvel::bench::Course course;
    course.run();
    return course.report();
  });
}
