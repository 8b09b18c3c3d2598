// What the host costs while nobody uses it: its start, its wake-ups, its memory, and the memory of each idle phone.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/ProcessRecord.hpp"
#include "bench/RawPhone.hpp"
#include "bench/Samples.hpp"
#include "bench/Wakeups.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "tools/PhoneFrames.hpp"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orvel::bench {
namespace {

constexpr int starts = extent(10, 2);
constexpr double longestStart = 0.1;

constexpr std::size_t fewPhones = 100;
constexpr std::size_t manyPhones = extent(1000, 200);
constexpr double mostMemoryPerPhone = 8.0;
constexpr std::chrono::milliseconds settlingTime{extent(3000, 500)};
constexpr rlim_t descriptorsNeeded = manyPhones + 100;

bool measureStart(const VirtualDesktop& desktop) {
  Samples start;
  Samples loading;
  for (int i = 0; i < starts; ++i) {
    const auto begun = std::chrono::steady_clock::now();
    runHost(desktop, "--version");
    loading.add(std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
    HostProcess host(desktop);
    start.add(host.startTime().count());
    host.stop();
  }
  std::printf("Start to open port: median %.1f ms, %.1f to %.1f (limit %.0f)\n", start.median() * 1000,
              start.least() * 1000, start.greatest() * 1000, longestStart * 1000);
  std::printf("  of which loading the program: %.1f ms (a run with --version)\n", loading.median() * 1000);
  return start.median() <= longestStart;
}

void printMemory(pid_t host) {
  const MemoryRecord memory = memoryOf(host);
  std::printf("\nMemory of the idle host: RSS %.1f MiB, PSS %.1f MiB, of its own %.1f MiB\n",
              static_cast<double>(memory.resident) / 1024, static_cast<double>(memory.proportional) / 1024,
              static_cast<double>(memory.privateDirty) / 1024);
}

/// Connects phones until there are `count`, each paired, and each having moved the pointer once: what a connection
/// allocates for its first input is part of its memory.
void connectPhones(std::vector<RawPhone>& phones, std::size_t count, const std::string& token) {
  while (phones.size() < count) {
    RawPhone& phone = phones.emplace_back(hostPort);
    phone.pair(token, "Phone");
    phone.sendFrame(phone::moveFrame(0, 0));
  }
  // The host lets the motion go by, stops its motion clock and gives up that thread.
  std::this_thread::sleep_for(settlingTime);
}

bool measurePhones(pid_t host, const std::string& token) {
  std::vector<RawPhone> phones;
  phones.reserve(manyPhones);
  connectPhones(phones, fewPhones, token);
  const MemoryRecord before = memoryOf(host);
  connectPhones(phones, manyPhones, token);
  const MemoryRecord after = memoryOf(host);
  const auto each = [](std::int64_t less, std::int64_t more) {
    return static_cast<double>(more - less) / static_cast<double>(manyPhones - fewPhones);
  };
  const double anonymous = each(before.anonymous, after.anonymous);
  const double dirty = each(before.privateDirty, after.privateDirty);
  std::printf(
      "Memory of each idle phone, from the growth between %zu and %zu: %.2f KiB anonymous, %.2f KiB private "
      "dirty (limit %.0f)\n",
      fewPhones, manyPhones, anonymous, dirty, mostMemoryPerPhone);
  return std::max(anonymous, dirty) <= mostMemoryPerPhone;
}

/// For this program and for the host that it starts.
void allowManyPhones() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < descriptorsNeeded) {
    throw std::runtime_error("the system does not allow connections of that many phones");
  }
}

Verdict measure() {
  allowManyPhones();
  const VirtualDesktop desktop;
  const std::string token = hostToken(desktop);
  const bool startsFast = measureStart(desktop);
  HostProcess host(desktop);
  const bool sleepsWell = watchSleep(host.pid(), "idle host");
  printMemory(host.pid());
  const bool phonesAreSmall = measurePhones(host.pid(), token);
  host.stop();
  return {startsFast && sleepsWell && phonesAreSmall,
          "the host starts within 100 ms, wakes for its permission timer only, and takes at most 8 KiB for a phone"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Idle: start, wake-ups and memory of the host", orvel::bench::measure);
}
