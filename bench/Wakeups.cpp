#include "bench/Wakeups.hpp"

#include "bench/Bench.hpp"
#include "bench/ProcessRecord.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <thread>

namespace orvel::bench {
namespace {

using std::chrono::milliseconds;

/// Longer than the ten seconds after which the host would have given up the connection that has shown it to be there.
constexpr milliseconds calmingTime{extent(11000, 500)};
constexpr milliseconds slice{100};
constexpr int slices = extent(150, 10);
constexpr int permissionTicks = 10;

std::int64_t sleepsIn(const std::map<pid_t, ThreadRecord>& threads) {
  std::int64_t sum = 0;
  for (const auto& [number, thread] : threads) sum += thread.sleeps;
  return sum;
}

/// Lets the time pass and counts the moments at which the host woke. Wake-ups in neighbouring slices are one moment.
int watchMoments(pid_t host) {
  int moments = 0;
  bool wasAwake = false;
  auto sleeps = sleepsIn(threadsOf(host));
  auto due = std::chrono::steady_clock::now();
  for (int i = 0; i < slices; ++i) {
    due += slice;
    std::this_thread::sleep_until(due);
    const auto now = sleepsIn(threadsOf(host));
    const bool isAwake = now != sleeps;
    if (isAwake && !wasAwake) ++moments;
    wasAwake = isAwake;
    sleeps = now;
  }
  return moments;
}

}  // namespace

bool watchSleep(pid_t host, const std::string& name, int timers) {
  std::this_thread::sleep_for(calmingTime);
  const auto before = threadsOf(host);
  const int moments = watchMoments(host);
  const auto after = threadsOf(host);
  const double seconds = std::chrono::duration<double>(slice * slices).count();
  const auto sum = sleepsIn(after) - sleepsIn(before);
  std::printf("\nWake-ups of the %s in %.0f s: %lld, which is %.1f for each of the %d permission ticks\n", name.c_str(),
              seconds, static_cast<long long>(sum), static_cast<double>(sum) / permissionTicks, permissionTicks);
  for (const auto& [number, thread] : after) {
    const auto earlier = before.find(number);
    const auto old = earlier == before.end() ? 0 : earlier->second.sleeps;
    std::printf("  %-16s %4lld\n", number == host ? "main thread" : thread.name.c_str(),
                static_cast<long long>(thread.sleeps - old));
  }
  // The window may begin just before a tick and end just behind one.
  const bool onlyTicks = moments <= timers * (permissionTicks + 1) && before.size() == after.size();
  std::printf("  at %d separate moments: %s\n", moments,
              onlyTicks ? "nothing but its timers wakes it" : "SOMETHING ELSE wakes it, too");
  return onlyTicks;
}

}  // namespace orvel::bench
