// How old a mirrored picture is when it has crossed a slow link, and how much of the link is used, beside a server that
// sends plainly.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/PlainMirrorServer.hpp"
#include "bench/Samples.hpp"
#include "bench/SlowLink.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "tools/LumaDecoder.hpp"
#include "tools/MirrorSession.hpp"
#include "tools/TimeStrip.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvel::bench {
namespace {

using std::chrono::steady_clock;

constexpr std::uint16_t plainPort = 8788;
constexpr phone::MirrorWish wish{.width = 900, .fps = 30, .quality = 0.45};
constexpr phone::Seconds limit{10};
constexpr std::chrono::seconds warmUp{extent(4, 2)};
constexpr std::chrono::seconds measured{extent(12, 3)};
constexpr std::chrono::milliseconds betweenQuestions{230};

// 5 Mbit a second, and 20 ms each way: a good while of a poor wireless network.
constexpr SlowLink::Pace pace{
    .bytesPerSecond = 625'000, .delay = std::chrono::duration<double>(0.020), .mostQueuedBytes = 200'000};

constexpr double oldestAge = 190;      // milliseconds
constexpr double leastGoodput = 0.90;  // of the link

/// A phone that asks something now and then, and times the answer.
class Question {
 public:
  explicit Question(phone::PhoneClient& client) : client_(client) {}

  /// Asks, when the last answer has come and it is time again.
  void askNowAndThen() {
    const auto now = steady_clock::now();
    if (asked_ || now < next_) return;
    static_cast<void>(client_.send({{"t", "ping"}}));
    asked_ = now;
    next_ = now + betweenQuestions;
  }

  /// Takes the answer: how long it took, in milliseconds.
  double answered() {
    return std::chrono::duration<double, std::milli>(steady_clock::now() - *std::exchange(asked_, std::nullopt))
        .count();
  }

 private:
  phone::PhoneClient& client_;
  std::optional<steady_clock::time_point> asked_;
  steady_clock::time_point next_;
};

struct Record {
  Samples ages;     // milliseconds
  Samples answers;  // milliseconds
  double bytesPerFrame = 0;
  double framesPerSecond = 0;

  double goodput() const { return bytesPerFrame * framesPerSecond / pace.bytesPerSecond; }
};

template <class Value>
Value expected(phone::Result<Value> result) {
  if (!result) throw std::runtime_error(result.error().text);
  return std::move(*result);
}

/// Watches the mirror for a while.
Record watch(phone::PhoneClient& client) {
  phone::MirrorSession mirror(client);
  const phone::MirrorSize size = expected(mirror.start(wish, limit));
  phone::LumaDecoder decoder;
  Question question(client);
  Record record;
  const auto begin = steady_clock::now() + warmUp;
  steady_clock::time_point first;
  steady_clock::time_point last;
  double bytes = 0;
  while (steady_clock::now() < begin + measured) {
    phone::HostMessage message = expected(client.receive(limit));
    if (steady_clock::now() < begin) continue;
    if (message.isText) {
      record.answers.add(question.answered());
      continue;
    }
    question.askNowAndThen();
    const phone::MirrorFrame frame = expected(phone::MirrorFrame::from(std::move(message)));
    const auto shown = phone::TimeStrip::find(expected(decoder.decode(frame.jpeg(), size)));
    if (!shown) throw std::runtime_error("the clock is not to be seen");
    const std::chrono::duration<double, std::milli> age = frame.arrival().wall - *shown;
    record.ages.add(age.count());
    last = steady_clock::now();
    if (record.ages.count() == 1) {
      first = last;
    } else {
      bytes += static_cast<double>(frame.jpeg().size());
    }
  }
  if (record.ages.count() < 2) throw std::runtime_error("no pictures were to be had");
  const auto frames = static_cast<double>(record.ages.count() - 1);
  record.bytesPerFrame = bytes / frames;
  record.framesPerSecond = frames / std::chrono::duration<double>(last - first).count();
  return record;
}

void print(const char* name, const Record& record) {
  std::printf("%-12s %6.0f %6.0f %6.0f   %5.1f   %6.0f   %5.1f %%   %6.0f %6.0f\n", name, record.ages.median(),
              record.ages.quantile(0.95), record.ages.greatest(), record.framesPerSecond, record.bytesPerFrame,
              record.goodput() * 100, record.answers.median(), record.answers.quantile(0.95));
}

Record watchPlainServer(const VirtualDesktop& desktop, SlowLink& link) {
  const PlainMirrorServer server(desktop.display(), plainPort);
  Record record;
  link.onFarSide([&] {
    auto client = expected(phone::PhoneClient::connect(SlowLink::nearAddress, plainPort, limit));
    record = watch(client);
    client.hangUp();
  });
  return record;
}

Record watchHost(const VirtualDesktop& desktop, SlowLink& link) {
  const std::string token = hostToken(desktop);
  HostProcess host(desktop);
  Record record;
  link.onFarSide([&] {
    auto client = expected(phone::PhoneClient::connect(SlowLink::nearAddress, hostPort, limit));
    expected(client.pair(token, "Phone", limit));
    record = watch(client);
    client.hangUp();
  });
  host.stop();
  return record;
}

Verdict measure() {
  const VirtualDesktop desktop;
  SlowLink link(pace);
  const ChildProcess clock(
      {.command = {ORVEL_CLOCK_PROGRAM, "--geometry", "800x480+100+100", "--rate", "120", "--noise", "0.6"},
       .environment = desktop.environment()});
  std::printf(
      "The link: 5 Mbit a second, 20 ms each way. The age is in milliseconds, and up to 8 ms of it is the\n"
      "clock's own.\n\n");
  std::printf("             age of pictures         pictures                     answers\n");
  std::printf("             median   95 %%   most   a s.     bytes   of the link  median   95 %%\n");
  const Record plain = watchPlainServer(desktop, link);
  print("sent plainly", plain);
  const Record ours = watchHost(desktop, link);
  print("Orvel", ours);
  const double floor = (ours.bytesPerFrame / pace.bytesPerSecond + pace.delay.count()) * 1000;
  std::printf("\nNo picture of that size can be younger than %.0f ms.\n", floor);
  return {ours.ages.quantile(0.95) <= oldestAge && ours.goodput() >= leastGoodput,
          "95 % of the pictures are at most 190 ms old, and at least 90 % of the link is used"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Slow link: the age of mirrored pictures", orvel::bench::measure);
}
