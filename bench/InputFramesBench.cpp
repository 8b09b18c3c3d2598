// What a motion frame costs our server, beside what it costs the barest server that can be written.

#include "bench/BareServer.hpp"
#include "bench/Bench.hpp"
#include "bench/ProcessRecord.hpp"
#include "bench/RawPhone.hpp"
#include "bench/RealServer.hpp"
#include "bench/Samples.hpp"
#include "bench/ServerProcess.hpp"
#include "desktop/Timeout.hpp"
#include "tools/PhoneFrames.hpp"

#include <sys/prctl.h>

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

using std::chrono::nanoseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t phoneCount = 50;
constexpr std::chrono::milliseconds framePeriod{1};
constexpr int millisecondsOfLoad = 800;
constexpr std::size_t rounds = extent(9, 1);
constexpr std::size_t fewestRounds = extent(3, 1);
constexpr std::chrono::seconds timeLimit{45};
constexpr double largestRatio = 1.7;
constexpr nanoseconds farBehind = std::chrono::milliseconds(1);
/// Frames that pile up are cheaper than frames that come one by one, and more so for one server than for the other: a
/// round in which more of them than this share were sent far behind their time says nothing.
constexpr double mostSentLate = 0.05;

/// All phones of one server, and the sums of the motion that they have sent. Each frame moves by one to the right, so
/// that one of the sums counts them.
class Phones {
 public:
  explicit Phones(const ServerProcess& server, bool mustPair) : server_(server) {
    for (std::size_t i = 0; i < phoneCount; ++i) {
      RawPhone& phone = phones_.emplace_back(server.tally().port);
      if (mustPair) phone.pair(realServerToken, "Phone " + std::to_string(i));
    }
  }

  void sendMove(std::size_t phone) {
    const auto dy = static_cast<std::int16_t>(static_cast<int>(frames_ * 7 % 201) - 100);
    phones_[phone].sendFrame(phone::moveFrame(1, dy));
    dy_ += dy;
    ++frames_;
  }

  std::int64_t frames() const { return frames_; }

  /// Waits until the server has taken everything.
  void settle() const {
    const Deadline deadline(timeout);
    const Tally& tally = server_.tally();
    while (tally.dx != frames_ || tally.dy != dy_) {
      if (deadline.left() == Milliseconds(0)) throw std::runtime_error("a server has lost frames");
      std::this_thread::sleep_for(Milliseconds(1));
    }
  }

 private:
  const ServerProcess& server_;
  std::vector<RawPhone> phones_;
  std::int64_t frames_ = 0;
  std::int64_t dy_ = 0;
};

/// A way to spread the frames of a second over it. Returns how many frames were sent far too late.
using Load = int (*)(Phones&);

/// The frames of all phones follow each other at equal distances.
int sendEvenly(Phones& phones) {
  constexpr nanoseconds step = nanoseconds(framePeriod) / phoneCount;
  int late = 0;
  auto due = SteadyClock::now();
  for (int i = 0; i < millisecondsOfLoad; ++i) {
    for (std::size_t phone = 0; phone < phoneCount; ++phone) {
      due += step;
      // Sleeping is too coarse for these distances.
      while (SteadyClock::now() < due) {
      }
      if (SteadyClock::now() - due > farBehind) ++late;
      phones.sendMove(phone);
    }
  }
  return late;
}

/// The frames of all phones come at once, every millisecond.
int sendInBursts(Phones& phones) {
  int late = 0;
  auto due = SteadyClock::now();
  for (int i = 0; i < millisecondsOfLoad; ++i) {
    due += framePeriod;
    std::this_thread::sleep_until(due);
    if (SteadyClock::now() - due > farBehind) late += phoneCount;
    for (std::size_t phone = 0; phone < phoneCount; ++phone) phones.sendMove(phone);
  }
  return late;
}

struct Server {
  Server(const std::function<void(Tally&)>& serve, bool mustPair) : process(serve), phones(process, mustPair) {}

  /// Processor nanoseconds per frame under a load.
  double measure(Load load, int& late) {
    const auto timeBefore = processorTimeOf(process.pid());
    const auto framesBefore = phones.frames();
    late += load(phones);
    phones.settle();
    const nanoseconds spent = processorTimeOf(process.pid()) - timeBefore;
    return static_cast<double>(spent.count()) / static_cast<double>(phones.frames() - framesBefore);
  }

  const ServerProcess process;
  Phones phones;
};

/// Both servers under one load, round by round.
struct Comparison {
  void addRound(Server& bareServer, Server& realServer) {
    int late = 0;
    const double bareCost = bareServer.measure(load, late);
    const double realCost = realServer.measure(load, late);
    ++attempts;
    if (late > mostSentLate * 2 * phoneCount * millisecondsOfLoad) return;
    bare.add(bareCost);
    real.add(realCost);
    ratio.add(realCost / bareCost);
  }

  void print() const {
    std::printf("%-22s %12.0f %12.0f %8.2f   %.2f to %-10.2f %3zu of %zu\n", name, bare.median(), real.median(),
                ratio.median(), ratio.least(), ratio.greatest(), ratio.count(), attempts);
  }

  bool isDone() const { return ratio.count() == rounds; }

  const char* name;
  Load load;
  Samples bare = {};
  Samples real = {};
  Samples ratio = {};
  std::size_t attempts = 0;
};

Verdict compare() {
  const auto end = SteadyClock::now() + timeLimit;
  prctl(PR_SET_TIMERSLACK, 1);
  Server bare(runBareServer, false);
  Server real(runRealServer, true);
  Comparison even{"evenly spread", sendEvenly};
  Comparison bursts{"bursts of 50", sendInBursts};
  int ignored = 0;
  for (Server* server : {&bare, &real}) server->measure(sendInBursts, ignored);
  while (!(even.isDone() && bursts.isDone()) && SteadyClock::now() < end) {
    if (!even.isDone()) even.addRound(bare, real);
    if (!bursts.isDone()) bursts.addRound(bare, real);
  }
  if (std::min(even.ratio.count(), bursts.ratio.count()) < fewestRounds) {
    throw std::runtime_error("the machine was too busy to send the frames on time; it could in " +
                             std::to_string(even.ratio.count()) + " of " + std::to_string(even.attempts) +
                             " rounds evenly, in " + std::to_string(bursts.ratio.count()) + " of " +
                             std::to_string(bursts.attempts) + " in bursts");
  }
  std::printf("%-22s %12s %12s %8s   %-18s %s\n", "processor ns per frame", "bare loop", "Orvel", "ratio",
              "lowest to highest", "rounds");
  even.print();
  bursts.print();
  std::printf("Every frame has arrived.\n");
  const bool isWithin = std::max(even.ratio.median(), bursts.ratio.median()) <= largestRatio;
  return {isWithin, "a frame costs Orvel at most 1.7 times what it costs a bare loop, however frames are spread"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Input frames: 50 phones, 1,000 motion frames a second each, medians of the rounds",
                                orvel::bench::compare);
}
