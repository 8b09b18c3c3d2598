#include "program/ProgramFixture.hpp"
#include "session/RawWebSocket.hpp"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace orvel {
namespace {

/// Sanitizers keep what was freed, and look for what was not by themselves.
constexpr bool memoryIsTelling = !ORVEL_SANITIZED;

struct LoadTest : ProgramFixture {
  void expectPrivateKilobytesBelow(std::size_t limit) {
    if (memoryIsTelling) {
      EXPECT_LT(host.footprint().privateKilobytes, limit);
    }
  }

  /// Waits until the host has let go of what it had for its phones.
  bool waitForDescriptors(std::size_t count) {
    const Deadline deadline(timeout);
    while (host.footprint().descriptors > count) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(5));
    }
    return true;
  }
};

TEST_F(LoadTest, AThousandPhonesAtOnceAndNothingLeftBehind) {
  { auto warmUp = connectPaired(); }
  const auto before = host.footprint();
  {
    std::vector<phone::PhoneClient> phones;
    for (int number = 0; number < 1000; ++number) phones.push_back(connect());
    for (auto& phone : phones) ASSERT_TRUE(phone.greeting(phoneTimeout));
    const auto during = host.footprint();
    EXPECT_LE(during.threads, before.threads) << "a phone has no thread of its own";
    expectPrivateKilobytesBelow(before.privateKilobytes + 1000u * 12);
    auto another = connectPaired();
    settle(another);
  }
  EXPECT_TRUE(waitForDescriptors(before.descriptors));
  EXPECT_LE(host.footprint().threads, before.threads);
}

TEST_F(LoadTest, TwoThousandVisitsLeaveNothingBehind) {
  const auto visit = [&](int number) {
    auto phone = number % 4 == 0 ? connectPaired() : connect();
    switch (number % 3) {
      case 0:
        phone.reset();
        break;
      case 1:
        phone.hangUp();
        break;
      default:
        phone.close(phoneTimeout);
    }
  };
  for (int number = 0; number < 200; ++number) visit(number);
  const auto before = host.footprint();
  for (int number = 0; number < 2000; ++number) visit(number);
  EXPECT_TRUE(waitForDescriptors(before.descriptors));
  const auto after = host.footprint();
  EXPECT_LE(after.threads, before.threads);
  expectPrivateKilobytesBelow(before.privateKilobytes + 1024);
}

TEST_F(LoadTest, APhoneThatAsksAndNeverReadsCostsBoundedMemory) {
  constexpr std::size_t batch = 4096;
  const std::string request = bytesOf(RawFrame{.opcode = opcode::text, .payload = R"({"t":"ping"})"});
  std::string requests;
  for (std::size_t count = 0; count < batch; ++count) requests += request;

  auto busy = connectPaired("Busy");
  RawWebSocket quiet(HostProcess::port, 4096);
  ASSERT_TRUE(quiet.open());
  const auto before = host.footprint();
  std::size_t asked = 0;
  while (asked < 3'000'000 && quiet.send(requests, std::chrono::milliseconds(500))) asked += batch;
  EXPECT_LT(asked, 3'000'000u) << "the host stops reading";
  expectPrivateKilobytesBelow(before.privateKilobytes + 4 * 1024);
  settle(busy);

  ASSERT_TRUE(quiet.readFrame()) << "the greeting";
  std::size_t answered = 0;
  while (answered < asked) {
    const auto frame = quiet.readFrame();
    ASSERT_TRUE(frame) << "after " << answered << " of " << asked << " answers";
    answered += frame->payload == R"({"t":"pong"})" ? 1 : 0;
  }
}

}  // namespace
}  // namespace orvel
