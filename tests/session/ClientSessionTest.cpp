#include "fakes/SessionFixture.hpp"
#include "session/ClientSession.hpp"

#include <gmock/gmock.h>

#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ClientSessionTest : SessionFixture {};

TEST_F(ClientSessionTest, GreetsWithANonceFirst) {
  open();
  ASSERT_EQ(phone->sent.size(), 1u);
  const auto hello = phone->received().at(0);
  EXPECT_EQ(hello.at("t"), "hello");
  EXPECT_EQ(hello.at("mac"), "Test Mac");
  EXPECT_EQ(hello.at("version").as_int64(), 1);
  const std::string nonce(hello.at("nonce").as_string());
  EXPECT_EQ(nonce.size(), 32u);
  EXPECT_EQ(nonce.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(hello.size(), 4u);
}

TEST_F(ClientSessionTest, NoncesOfTwoSessionsDiffer) {
  open();
  const auto other = std::make_shared<FakeWire>(clock);
  const auto second = makeSession(other);
  other->open();
  EXPECT_NE(phone->received("hello").at(0).at("nonce"), other->received("hello").at(0).at("nonce"));
  EXPECT_NE(session->id(), second->id());
}

TEST_F(ClientSessionTest, IsAnUnknownIPhoneAtFirst) {
  EXPECT_FALSE(session->authenticated());
  EXPECT_EQ(session->deviceName(), "iPhone");
}

TEST_F(ClientSessionTest, AConnectionThatNeverBecomesReadyGetsNoHelloAndLeaves) {
  phone->fail();
  EXPECT_THAT(phone->sent, IsEmpty());
  EXPECT_THAT(hub->left, ElementsAre(session->id()));
}

TEST_F(ClientSessionTest, MessagesAreHandledInTheOrderSent) {
  phone->text(R"({"t":"ping"})");
  phone->text(R"({"t":"auth"})");
  phone->text(R"({"t":"ping"})");
  open();
  std::vector<std::string> kinds;
  for (const auto& message : phone->received()) kinds.emplace_back(message.at("t").as_string());
  EXPECT_THAT(kinds, ElementsAre("hello", "pong", "denied", "pong"));
}

TEST_F(ClientSessionTest, EmptyMessagesAreSkipped) {
  open();
  phone->binary({});
  phone->text("");
  phone->text(R"({"t":"ping"})");
  EXPECT_EQ(phone->received("pong").size(), 1u);
}

TEST_F(ClientSessionTest, AfterACloseNothingMoreIsRead) {
  open();
  phone->arrive(MessageType::close, "");
  phone->text(R"({"t":"ping"})");
  clock.runDue();
  EXPECT_TRUE(phone->cancelled);
  EXPECT_THAT(phone->received("pong"), IsEmpty());
  EXPECT_THAT(hub->left, ElementsAre(session->id()));
}

TEST_F(ClientSessionTest, AReceiveErrorEndsTheSessionAndNothingIsAskedForAgain) {
  open();
  phone->drop();
  EXPECT_THAT(hub->left, ElementsAre(session->id()));
  EXPECT_FALSE(phone->asked);
}

TEST_F(ClientSessionTest, TearingDownTwiceIsHarmless) {
  openAuthenticated();
  phone->binary({2, 0, 1});
  phone->drop();
  session->cancel();
  clock.runDue();
  EXPECT_EQ(hub->left.size(), 2u);
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 2u) << "one press, one release";
}

TEST_F(ClientSessionTest, APhoneThatVanishesInADragLeavesNoButtonDown) {
  openAuthenticated();
  phone->binary({2, 0, 1});
  phone->binary({1, 5, 0, 5, 0});
  clock.runDue();
  phone->drop();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::leftUp);
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionTest, AnUnauthenticatedPhoneReleasesNothing) {
  pointer.button(0, true, 1);
  open();
  phone->drop();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::leftDown) << "another phone holds it";
}

TEST_F(ClientSessionTest, AKeyThatWasLeftDownIsReleasedWithItsPhone) {
  openAuthenticated();
  phone->binary({4, 8, 0, 1, 1});
  const auto other = connectAnother();
  other->binary({4, 9, 0, 1, 0});
  phone->drop();
  EXPECT_EQ(desktop.all<KeyEvent>().back(), (KeyEvent{.keyCode = 8, .down = false}));
  EXPECT_EQ(desktop.all<KeyEvent>().size(), 3u) << "the other phone's key stays down";
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionTest, AKeyThatTwoPhonesHoldIsReleasedWithTheLastOfThem) {
  openAuthenticated();
  const auto other = connectAnother();
  phone->binary({4, 8, 0, 1, 0});
  other->binary({4, 8, 0, 1, 0});
  phone->drop();
  EXPECT_TRUE(desktop.all<KeyEvent>().back().down) << "the other phone holds it still";
  other->drop();
  EXPECT_EQ(desktop.all<KeyEvent>().back(), (KeyEvent{.keyCode = 8, .down = false}));
  EXPECT_EQ(desktop.all<KeyEvent>().size(), 3u);
}

TEST_F(ClientSessionTest, APhoneThatLeavesLetsGoOfTheButtonsOfAllPhones) {
  openAuthenticated();
  const auto other = connectAnother();
  other->binary({2, 1, 1});
  phone->drop();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::rightUp);
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionTest, WhatAPhoneHoldsIsReleasedAlsoWhenThePermissionHasGone) {
  openAuthenticated();
  phone->binary({2, 0, 1});
  phone->binary({4, 8, 0, 1, 0});
  desktop.trusted = false;
  permission.refresh();
  phone->binary({4, 8, 0, 0, 0});
  EXPECT_TRUE(desktop.all<KeyEvent>().back().down) << "the permission counts for the frame";
  phone->drop();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::leftUp);
  EXPECT_EQ(desktop.all<KeyEvent>().back(), (KeyEvent{.keyCode = 8, .down = false}));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionTest, ACancelledSessionIsTakenDownEvenWhenNobodyHoldsItAnyMore) {
  openAuthenticated();
  phone->binary({2, 0, 1});
  session->cancel();
  session.reset();
  clock.runDue();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::leftUp);
  EXPECT_TRUE(phone->closed) << "and then it is gone";
}

TEST_F(ClientSessionTest, AnEndedSessionIsFreed) {
  openAuthenticated();
  const std::weak_ptr<ClientSession> watched = session;
  phone->drop();
  session.reset();
  clock.advance(Seconds(5));
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(phone->closed);
}

TEST_F(ClientSessionTest, ASessionOutlivesItsHub) {
  open();
  hub.reset();
  authenticate(*phone);
  EXPECT_TRUE(session->authenticated());
  phone->drop();
}

TEST_F(ClientSessionTest, AMessageThatIsNotTextIsNotSent) {
  open();
  session->send({{"t", "x"}, {"name", "\xff"}});
  EXPECT_EQ(phone->sent.size(), 1u);
}

TEST_F(ClientSessionTest, APhoneThatDoesNotReadIsNotReadFrom) {
  open();
  phone->stalled = true;
  for (int message = 0; message < 100'000; ++message) phone->text(R"({"t":"ping"})");
  const std::size_t answered = phone->sent.size();
  EXPECT_LT(answered, 30'000u) << "the replies that wait are bounded";
  EXPECT_GT(phone->incoming.size(), 70'000u);

  phone->unstall();
  clock.runDue();
  EXPECT_EQ(phone->received("pong").size(), 100'000u) << "nothing was lost";
}

TEST_F(ClientSessionTest, ABatchOfFramesIsFlushedOnce) {
  openAuthenticated();
  const int before = desktop.flushes;
  phone->delivering = true;  // the frames below arrive together
  for (std::uint8_t step = 0; step < 50; ++step) phone->binary({9, step, 0, step, 0});
  phone->binary({8, 0, 1});
  phone->delivering = false;
  phone->deliver();
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 52u);
  EXPECT_EQ(desktop.flushes, before + 1);
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

}  // namespace
}  // namespace orvel
