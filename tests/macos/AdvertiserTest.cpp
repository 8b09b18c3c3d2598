#include "MacTest.hpp"
#include "frameworks/Bonjour.hpp"
#include "platform/macos/SystemAdvertiser.hpp"
#include "platform/macos/WakeUpPipe.hpp"

#include <arpa/inet.h>
#include <fcntl.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace orvel {
namespace {

using std::chrono::milliseconds;

constexpr DNSServiceErrorType notRunning = -65563;
constexpr DNSServiceErrorType notPermitted = -65570;
constexpr DNSServiceErrorType noError = kDNSServiceErr_NoError;
constexpr DNSServiceErrorType badParameter = kDNSServiceErr_BadParam;

class AdvertiserTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::bonjour().change([](fake::Bonjour::State& state) { state = {}; });
    advertiser_.emplace();
  }

  void TearDown() override {
    advertiser_.reset();
    EXPECT_TRUE(eventually([] { return living() == 0; }));
    EXPECT_EQ(fake::bonjour().state().wrongThreadUses, 0);
    MacTest::TearDown();
  }

  static bool eventually(const std::function<bool()>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(milliseconds(1));
    }
    return true;
  }

  static std::size_t requests() { return fake::bonjour().state().requests.size(); }
  static std::size_t living() { return fake::bonjour().state().living.size(); }

  /// Whether so many requests were made and one lives.
  static bool isAnnounced(std::size_t count) {
    return eventually([=] { return requests() == count && living() == 1; });
  }

  static void refuse(std::deque<DNSServiceErrorType> errors) {
    fake::bonjour().change([&](fake::Bonjour::State& state) { state.refusals = errors; });
  }

  void advertise() { advertiser_->advertise("Desk", "_orvel._tcp", 8787); }

  milliseconds timeToEnd() {
    const auto start = std::chrono::steady_clock::now();
    advertiser_.reset();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
  }

  std::optional<SystemAdvertiser> advertiser_;
};

TEST_F(AdvertiserTest, NothingIsAnnouncedUnasked) {
  advertiser_->withdraw();
  EXPECT_LT(timeToEnd(), milliseconds(500));
  EXPECT_EQ(requests(), 0u);
}

TEST_F(AdvertiserTest, TheServiceIsAnnouncedByNameAndPortAlone) {
  advertiser_->advertise("Ada's Küche", "_orvel._tcp", 8787);
  ASSERT_TRUE(isAnnounced(1));
  const fake::BonjourRequest request = fake::bonjour().state().requests[0];
  EXPECT_EQ(request.flags, 0u) << "the system may take another name";
  EXPECT_EQ(request.interfaceIndex, 0u);
  EXPECT_EQ(request.name, "Ada's Küche");
  EXPECT_EQ(request.type, "_orvel._tcp");
  EXPECT_FALSE(request.hasDomainOrHost);
  EXPECT_EQ(ntohs(request.port), 8787);
  EXPECT_FALSE(request.hasText);
}

TEST_F(AdvertiserTest, WithdrawingTakesItBack) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  advertiser_->withdraw();
  EXPECT_TRUE(eventually([] { return living() == 0; }));
  advertise();
  EXPECT_TRUE(isAnnounced(2));
}

TEST_F(AdvertiserTest, AdvertisingAgainReplaces) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  advertiser_->advertise("Kitchen", "_orvel._tcp", 8788);
  ASSERT_TRUE(isAnnounced(2));
  EXPECT_EQ(fake::bonjour().state().requests[1].name, "Kitchen");
}

TEST_F(AdvertiserTest, TheEndTakesItBack) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  EXPECT_LT(timeToEnd(), milliseconds(500));
  EXPECT_EQ(living(), 0u);
}

TEST_F(AdvertiserTest, NothingRunsWhileNothingChanges) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  fake::bonjour().answer(noError);
  ASSERT_TRUE(eventually([] { return fake::bonjour().state().socketQueries == 2; }));
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(fake::bonjour().state().socketQueries, 2);
}

TEST_F(AdvertiserTest, TheServiceIsRegisteredAgainAfterEachRestartOfTheDaemon) {
  advertise();
  for (const std::size_t count : {1, 2, 3}) {
    ASSERT_TRUE(isAnnounced(count));
    fake::bonjour().answer(noError);
    fake::bonjour().die();
  }
  EXPECT_TRUE(isAnnounced(4));
}

TEST_F(AdvertiserTest, WhatIsRefusedIsTriedMoreAndMoreRarely) {
  refuse({notRunning});
  advertise();
  ASSERT_TRUE(eventually([] { return requests() == 3; }));
  std::this_thread::sleep_for(milliseconds(300));
  EXPECT_EQ(requests(), 3u);
}

TEST_F(AdvertiserTest, WhatIsAskedForAnewIsTriedSoonAgain) {
  refuse({notRunning});
  advertise();
  ASSERT_TRUE(eventually([] { return requests() == 3; }));
  const auto start = std::chrono::steady_clock::now();
  advertise();
  EXPECT_TRUE(eventually([] { return requests() == 6; }));
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1000)) << "at once, after 50 and after 200 ms";
}

TEST_F(AdvertiserTest, ARefusalThatComesLaterIsOneToo) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  fake::bonjour().answer(notPermitted);
  EXPECT_TRUE(isAnnounced(2));
}

TEST_F(AdvertiserTest, ASuccessLetsTheNextLossBeMendedSoon) {
  refuse({notRunning, notRunning, noError});
  advertise();
  ASSERT_TRUE(isAnnounced(3));
  fake::bonjour().answer(noError);
  fake::bonjour().die();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(isAnnounced(4));
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(800));
}

TEST_F(AdvertiserTest, WhatMakesNoSenseIsNotTriedAgain) {
  refuse({badParameter, noError});
  advertiser_->advertise("Desk", "no type", 8787);
  ASSERT_TRUE(eventually([] { return requests() == 1; }));
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(requests(), 1u);
  advertise();
  EXPECT_TRUE(isAnnounced(2));
}

TEST_F(AdvertiserTest, ANameThatIsNotUTF8IsNotRegistered) {
  advertise();
  ASSERT_TRUE(isAnnounced(1));
  advertiser_->advertise("Desk\xff", "_orvel._tcp", 8787);
  ASSERT_TRUE(eventually([] { return living() == 0; })) << "what it replaces is withdrawn";
  advertise();
  EXPECT_TRUE(isAnnounced(2));
  EXPECT_EQ(fake::bonjour().state().requests[1].name, "Desk");
}

TEST_F(AdvertiserTest, ALongNameIsCutBetweenCharacters) {
  std::string name = "x";
  std::string expected = "x";
  for (int count = 0; count < 30; ++count) name += "日";
  for (int count = 0; count < 20; ++count) expected += "日";
  advertiser_->advertise(name, "_orvel._tcp", 8787);
  ASSERT_TRUE(isAnnounced(1));
  EXPECT_EQ(fake::bonjour().state().requests[0].name, expected);
}

TEST(WakeUpPipe, IsClosedAtTheEndAndForOtherPrograms) {
  std::optional<WakeUpPipe> pipe(std::in_place);
  const int end = pipe->descriptor();
  EXPECT_EQ(fcntl(end, F_GETFD), FD_CLOEXEC);
  pipe.reset();
  EXPECT_EQ(fcntl(end, F_GETFD), -1);
}

TEST_F(AdvertiserTest, ItEndsQuicklyWhileItWaitsToTryAgain) {
  refuse({notPermitted});
  advertise();
  ASSERT_TRUE(eventually([] { return requests() == 3; }));
  EXPECT_LT(timeToEnd(), milliseconds(500));
}

TEST_F(AdvertiserTest, ADaemonThatHangsIsLeft) {
  const auto begun = std::make_shared<std::promise<void>>();
  std::promise<void> release;
  fake::bonjour().change([&](fake::Bonjour::State& state) {
    state.delay = [begun, released = release.get_future().share()] {
      begun->set_value();
      released.wait();
    };
  });
  advertise();
  begun->get_future().wait();
  EXPECT_LT(timeToEnd(), milliseconds(3000));
  release.set_value();
  EXPECT_TRUE(eventually([] { return fake::bonjour().state().socketQueries == 1; }));
}

}  // namespace
}  // namespace orvel
