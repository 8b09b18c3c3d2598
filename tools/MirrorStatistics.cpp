#include "tools/MirrorStatistics.hpp"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <utility>

namespace orvel::phone {
namespace {

std::string decimal(double number, int digits) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(digits) << number;
  return text.str();
}

std::string text(AgeCount::Age age) {
  return std::to_string(age.count()) + " ms";
}

std::string ageReport(const AgeCount& ages) {
  if (ages.count() == 0) return "age: known only when orvel-clock is on that screen";
  return "age: " + text(ages.quantile(0.5)) + " at the median, " + text(ages.quantile(0.95)) + " at 95 %, " +
         text(ages.quantile(1)) + " at most, of " + std::to_string(ages.count()) + " frames";
}

}  // namespace

void MirrorStatistics::Stretch::take(std::size_t frameBytes, std::optional<AgeCount::Age> age) {
  ++frames;
  bytes += frameBytes;
  if (age) ages.add(*age);
}

Seconds MirrorStatistics::Stretch::length(Moment end) const {
  constexpr Seconds shortest{0.001};
  return std::max(shortest, Seconds(end - start));
}

double MirrorStatistics::Stretch::framesPerSecond(Moment end) const {
  return static_cast<double>(frames) / length(end).count();
}

double MirrorStatistics::Stretch::megabitsPerSecond(Moment end) const {
  return static_cast<double>(bytes) * 8 / 1e6 / length(end).count();
}

std::size_t MirrorStatistics::Stretch::bytesPerFrame() const {
  return frames == 0 ? 0 : bytes / frames;
}

void MirrorStatistics::take(std::size_t bytes, std::optional<AgeCount::Age> age) {
  whole_.take(bytes, age);
  recent_.take(bytes, age);
}

std::string MirrorStatistics::line(Moment now) {
  const Stretch passed = std::exchange(recent_, Stretch{now});
  const std::string age = passed.ages.count() == 0 ? "" : ", " + text(passed.ages.quantile(0.5)) + " old";
  return decimal(passed.framesPerSecond(now), 1) + " frames/s, " + std::to_string(passed.bytesPerFrame()) +
         " bytes a frame, " + decimal(passed.megabitsPerSecond(now), 2) + " Mbit/s" + age;
}

std::string MirrorStatistics::report(Moment end) const {
  return "frames: " + std::to_string(whole_.frames) + " in " + decimal(whole_.length(end).count(), 1) + " s, " +
         decimal(whole_.framesPerSecond(end), 1) + " frames/s\n" + "bytes: " + std::to_string(whole_.bytesPerFrame()) +
         " a frame, " + decimal(whole_.megabitsPerSecond(end), 2) + " Mbit/s\n" + ageReport(whole_.ages) + '\n';
}

}  // namespace orvel::phone
