#include "fakes/SessionFixture.hpp"

#include <gmock/gmock.h>

#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ClientSessionControlTest : SessionFixture {
  void SetUp() override { open(); }

  /// Whether the session is still there and answers.
  bool answers() {
    const std::size_t before = phone->received("pong").size();
    phone->text(R"({"t":"ping"})");
    clock.runDue();
    return phone->received("pong").size() == before + 1;
  }
};

TEST_F(ClientSessionControlTest, APingIsAnsweredBeforeAuthentication) {
  phone->text(R"({"t":"ping"})");
  EXPECT_EQ(phone->sent.back(), R"({"t":"pong"})");
}

TEST_F(ClientSessionControlTest, WhatIsNoKnownMessageIsDropped) {
  const char* messages[] = {
      "not json",
      "{",
      "[]",
      R"(["t","ping"])",
      R"("ping")",
      "42",
      "null",
      "{}",
      R"({"type":"ping"})",
      R"({"t":"Ping"})",
      R"({"t":1})",
      R"({"t":null})",
      R"({"t":"ping "})",
      R"({"t":""})",
      R"({"t":"pong"})",
      R"({"t":"ping"} x)",
      "\xef\xbb",
  };
  for (const char* message : messages) {
    phone->text(message);
    EXPECT_EQ(phone->sent.size(), 1u) << message;
  }
  EXPECT_TRUE(answers());
  EXPECT_FALSE(phone->cancelled);
}

TEST_F(ClientSessionControlTest, OtherKeysAreIgnored) {
  phone->text(R"({"x":[1,{"t":"auth"}],"t":"ping","proof":3})");
  EXPECT_EQ(phone->received("pong").size(), 1u);
}

TEST_F(ClientSessionControlTest, DeepNestingIsEitherReadOrDropped) {
  const auto nested = [](std::size_t depth) {
    return R"({"t":"ping","x":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
  };
  phone->text(nested(100));
  EXPECT_EQ(phone->received("pong").size(), 1u);
  phone->text(nested(1'000'000));
  EXPECT_EQ(phone->received("pong").size(), 1u);
  EXPECT_TRUE(answers());
}

TEST_F(ClientSessionControlTest, AGoodProofMakesThePhoneReady) {
  authenticate(*phone, "Zoe's phone");
  EXPECT_TRUE(session->authenticated());
  EXPECT_EQ(session->deviceName(), "Zoe's phone");
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("Zoe's phone"));
  EXPECT_EQ(hub->published, 1);
  const auto ready = phone->received("ready").at(0);
  EXPECT_EQ(ready.at("mac"), "Test Mac");
  ASSERT_TRUE(ready.at("accessibility").is_bool());
  EXPECT_TRUE(ready.at("accessibility").as_bool());
  EXPECT_EQ(ready.size(), 3u);
}

TEST_F(ClientSessionControlTest, ReadyDoesNotWaitUntilTheNameIsStored) {
  std::size_t readyBefore = 0;
  preferences.beforeWriting = [&] { readyBefore = phone->received("ready").size(); };
  phone->text(R"({"t":"auth","device":"Zoe","proof":")" + proofFor(*phone) + R"("})");
  EXPECT_EQ(phone->received("ready").size(), 1u);
  EXPECT_FALSE(preferences.lists.contains("orvel.devices"));
  clock.runDue();
  EXPECT_EQ(readyBefore, 1u);
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("Zoe"));
}

TEST_F(ClientSessionControlTest, APhoneThatLeavesAtOnceIsRemembered) {
  phone->text(R"({"t":"auth","device":"Zoe","proof":")" + proofFor(*phone) + R"("})");
  session->cancel();
  session.reset();
  clock.runDue();
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("Zoe"));
}

TEST_F(ClientSessionControlTest, ANameIsNotRememberedUnderACodeThatItsPhoneHasNotProved) {
  phone->text(R"({"t":"auth","device":"Zoe","proof":")" + proofFor(*phone) + R"("})");
  pairing.rotateToken();
  clock.runDue();
  EXPECT_FALSE(preferences.lists.contains("orvel.devices"));
}

TEST_F(ClientSessionControlTest, ReadyCarriesTheLiveAnswerNotTheRememberedOne) {
  desktop.trusted = false;
  authenticate(*phone);
  EXPECT_TRUE(permission.cachedTrust());
  EXPECT_FALSE(phone->received("ready").at(0).at("accessibility").as_bool());
}

TEST_F(ClientSessionControlTest, APhoneWithoutANameIsAnIPhone) {
  phone->text(R"({"t":"auth","proof":")" + proofFor(*phone) + R"("})");
  EXPECT_EQ(session->deviceName(), "iPhone");
  clock.runDue();
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("iPhone"));
  phone->text(R"({"t":"auth","proof":")" + proofFor(*phone) + R"(","device":7})");
  EXPECT_EQ(session->deviceName(), "iPhone");
  phone->text(R"({"t":"auth","proof":")" + proofFor(*phone) + R"(","device":""})");
  EXPECT_EQ(session->deviceName(), "");
}

TEST_F(ClientSessionControlTest, ADenialCallsTheComputerWhatItIs) {
  machine.kindName = "computer";
  phone->text(R"({"t":"auth"})");
  EXPECT_EQ(phone->received("denied").at(0).at("reason"), "That pairing code does not match this computer.");
}

TEST_F(ClientSessionControlTest, AnAuthWithoutAProofIsDeniedAndClosedAfterAPause) {
  phone->text(R"({"t":"auth"})");
  EXPECT_EQ(phone->received("denied").at(0).at("reason"), "That pairing code does not match this Mac.");
  EXPECT_FALSE(session->authenticated());
  clock.advance(Seconds(0.29));
  EXPECT_FALSE(phone->cancelled);
  EXPECT_TRUE(answers()) << "until then the session keeps its rules";
  clock.advance(Seconds(0.02));
  EXPECT_TRUE(phone->cancelled);
  EXPECT_THAT(hub->left, ElementsAre(session->id()));
  EXPECT_EQ(hub->published, 0);
  EXPECT_FALSE(preferences.lists.contains("orvel.devices"));
}

TEST_F(ClientSessionControlTest, AProofThatIsNoStringIsDenied) {
  phone->text(R"({"t":"auth","proof":["x"]})");
  EXPECT_EQ(phone->received("denied").size(), 1u);
}

TEST_F(ClientSessionControlTest, TheProofOfAnotherSessionIsDenied) {
  const auto other = std::make_shared<FakeWire>(clock);
  const auto second = makeSession(other);
  other->open();
  phone->text(R"({"t":"auth","proof":")" + proofFor(*other) + R"("})");
  EXPECT_EQ(phone->received("denied").size(), 1u);
}

TEST_F(ClientSessionControlTest, AuthenticatingAgainRenames) {
  authenticate(*phone, "Old");
  authenticate(*phone, "New");
  EXPECT_EQ(session->deviceName(), "New");
  EXPECT_EQ(phone->received("ready").size(), 2u);
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("Old", "New"));
}

TEST_F(ClientSessionControlTest, AuthenticatingAgainWithoutANameIsBeingAnIPhoneAgain) {
  authenticate(*phone, "Zoe");
  phone->text(R"({"t":"auth","proof":")" + proofFor(*phone) + R"("})");
  EXPECT_EQ(session->deviceName(), "iPhone");
  clock.runDue();
  EXPECT_THAT(preferences.lists.at("orvel.devices"), ElementsAre("Zoe", "iPhone"));
}

TEST_F(ClientSessionControlTest, AGoodProofAfterABadOneCountsUntilTheConnectionIsClosed) {
  phone->text(R"({"t":"auth","proof":"bad"})");
  clock.advance(Seconds(0.2));
  authenticate(*phone, "Zoe");
  EXPECT_TRUE(session->authenticated());
  EXPECT_EQ(phone->received("ready").size(), 1u);
  phone->binary({8, 0, 1});
  EXPECT_EQ(desktop.posted.size(), 2u);
  clock.advance(Seconds(0.2));
  EXPECT_TRUE(phone->cancelled) << "but it is closed all the same";
}

TEST_F(ClientSessionControlTest, ABadProofClosesAnAuthenticatedSessionToo) {
  authenticate(*phone);
  phone->text(R"({"t":"auth","proof":"bad"})");
  EXPECT_TRUE(session->authenticated());
  clock.advance(Seconds(0.31));
  EXPECT_TRUE(phone->cancelled);
}

TEST_F(ClientSessionControlTest, ADeniedSessionThatHasGoneIsNotClosedAgain) {
  phone->text(R"({"t":"auth"})");
  phone->drop();
  session.reset();
  clock.advance(Seconds(1));
  EXPECT_EQ(hub->left.size(), 1u);
}

TEST_F(ClientSessionControlTest, RevealNeedsAuthentication) {
  phone->text(R"({"t":"reveal"})");
  clock.advance(Seconds(1));
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionControlTest, RequestsBeforeAuthenticationAreDropped) {
  for (const char* kind : {"getApps", "getIcons", "mirrorStart", "mirrorStop", "snap", "reveal"}) {
    phone->text(R"({"t":")" + std::string(kind) + R"("})");
    EXPECT_EQ(phone->sent.size(), 1u) << kind;
  }
  EXPECT_TRUE(answers());
}

TEST_F(ClientSessionControlTest, ARevealThatWaitsGoesWithItsPhone) {
  authenticate(*phone);
  phone->text(R"({"t":"reveal"})");
  phone->drop();
  session.reset();
  clock.advance(Seconds(1));
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionControlTest, ANewTokenLeavesAuthenticatedSessionsAsTheyAre) {
  authenticate(*phone);
  pairing.rotateToken();
  phone->binary({8, 0, 1});
  EXPECT_EQ(desktop.posted.size(), 2u);
}

TEST_F(ClientSessionControlTest, OfAKeyThatComesTwiceTheLastCounts) {
  phone->text(R"({"t":"auth","t":"ping"})");
  EXPECT_EQ(phone->received("pong").size(), 1u);
  phone->text(R"({"t":"ping","t":3})");
  EXPECT_EQ(phone->received("pong").size(), 1u);
}

TEST_F(ClientSessionControlTest, KeysInsideOfOthersAreNotTheMessages) {
  phone->text(R"({"x":{"t":"ping"},"y":["t","ping"]})");
  phone->text(R"([{"t":"ping"}])");
  phone->text(R"({"t":{"t":"ping"}})");
  phone->text(R"({"t":["ping"]})");
  EXPECT_THAT(phone->received("pong"), IsEmpty());
  phone->text(" {\"x\":{\"t\":\"auth\"},\"t\":\"p\\u0069ng\",\"y\":[{\"t\":\"auth\"}]}\n");
  EXPECT_EQ(phone->received("pong").size(), 1u) << "spaces and escapes are as good";
}

TEST_F(ClientSessionControlTest, RevealNeedsThePermissionAsRemembered) {
  authenticate(*phone);
  desktop.trusted = false;
  permission.refresh();
  desktop.trusted = true;
  phone->text(R"({"t":"reveal"})");
  clock.advance(Seconds(1));
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionControlTest, RevealCirclesThePointerOffTheNetworkThread) {
  authenticate(*phone);
  phone->text(R"({"t":"reveal"})");
  EXPECT_THAT(desktop.posted, IsEmpty()) << "it runs on the work queue";
  clock.advance(Seconds(1));
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 12u);
  EXPECT_THAT(phone->received("reveal"), IsEmpty());
}

}  // namespace
}  // namespace orvel
