#include "fakes/SessionFixture.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t longest = 65'535;  // bytes of a text

/// What becomes of a phone that asks for more than can be done at once.
struct ClientSessionBacklogTest : SessionFixture {
  void SetUp() override { openAuthenticated(); }

  void sendText(const std::string& text) {
    std::vector<std::uint8_t> frame = {5, static_cast<std::uint8_t>(text.size() & 0xff),
                                       static_cast<std::uint8_t>(text.size() >> 8)};
    frame.insert(frame.end(), text.begin(), text.end());
    phone->binary(frame);
  }

  /// Lets everything be done. Typing takes its time.
  void finishAll() { clock.advance(Seconds(36'000)); }

  /// Texts, each of one letter again and again, more than is typed at once.
  void flood(int texts) {
    for (int text = 0; text < texts; ++text) sendText(std::string(longest, letter(text)));
  }
  static char letter(int text) { return static_cast<char>('a' + text % 26); }

  /// The texts that were typed whole, one letter for each.
  std::string typed() const {
    std::u16string all;
    for (const TextEvent& event : desktop.all<TextEvent>()) {
      all += event.text;
    }
    std::string letters;
    for (std::size_t at = 0; at + longest <= all.size(); at += longest) letters += static_cast<char>(all[at]);
    return letters;
  }
  static std::string inOrder(int texts) {
    std::string letters;
    for (int text = 0; text < texts; ++text) letters += letter(text);
    return letters;
  }

  void holdAButtonAndAKey() {
    phone->binary({2, 0, 1});
    phone->binary({4, 8, 0, 1, 0});
    ASSERT_FALSE(holdsNothing());
  }
  /// How often something was typed while a key was down.
  std::size_t typedWithAKeyDown() const {
    std::size_t count = 0;
    bool isDown = false;
    for (const PostedEvent& event : desktop.posted) {
      if (const auto* key = std::get_if<KeyEvent>(&event)) isDown = key->down;
      if (std::holds_alternative<TextEvent>(event) && isDown) ++count;
    }
    return count;
  }
  bool holdsNothing() const {
    return desktop.all<MouseEvent>().back().type == MouseEventType::leftUp && !desktop.all<KeyEvent>().back().down;
  }
};

TEST_F(ClientSessionBacklogTest, AnEndIsNoticedHoweverMuchWaits) {
  holdAButtonAndAKey();
  flood(50);
  phone->drop();
  EXPECT_TRUE(holdsNothing());
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
  EXPECT_THAT(hub->lingering, ElementsAre(session->id()));
  EXPECT_THAT(desktop.all<TextEvent>(), IsEmpty());
  clock.runDue();
  EXPECT_TRUE(phone->cancelled) << "a phone may have ended its own side alone";
}

TEST_F(ClientSessionBacklogTest, AGoodbyeIsNoticedHoweverMuchWaits) {
  holdAButtonAndAKey();
  flood(50);
  phone->arrive(MessageType::close, "");
  EXPECT_THAT(phone->incoming, IsEmpty());
  clock.runDue();
  EXPECT_TRUE(phone->cancelled);
  EXPECT_TRUE(holdsNothing());
  EXPECT_THAT(hub->lingering, ElementsAre(session->id()));
}

TEST_F(ClientSessionBacklogTest, WhatArrivedBeforeTheEndIsTypedAndThenTheSessionGoes) {
  flood(50);
  phone->text(R"({"t":"ping"})");
  phone->drop();
  EXPECT_THAT(hub->left, IsEmpty());
  const std::weak_ptr<ClientSession> watched = session;
  const SessionID id = session->id();
  session.reset();
  finishAll();
  EXPECT_EQ(typed(), inOrder(50));
  EXPECT_THAT(phone->received("pong"), IsEmpty()) << "nobody waits for answers";
  EXPECT_THAT(hub->left, ElementsAre(id));
  EXPECT_TRUE(watched.expired());
}

TEST_F(ClientSessionBacklogTest, KeysThatArrivedBeforeTheEndDoNotStayDown) {
  flood(50);
  phone->binary({4, 8, 0, 1, 0});
  phone->drop();
  finishAll();
  EXPECT_THAT(desktop.all<KeyEvent>(),
              ElementsAre(KeyEvent{.keyCode = 8, .down = true}, KeyEvent{.keyCode = 8, .down = false}));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionBacklogTest, KeysThatArrivedBeforeTheEndAreReleasedBeforeTheTextsBehindThem) {
  flood(10);
  phone->binary({4, 55, 0, 1, 0});
  flood(40);
  phone->drop();
  finishAll();
  EXPECT_EQ(desktop.all<KeyEvent>().size(), 2u);
  EXPECT_EQ(typedWithAKeyDown(), 0u) << "nobody is there to release it";
}

TEST_F(ClientSessionBacklogTest, KeysThatWereHandedOverBeforeTheEndAreReleasedBeforeTheTextsBehindThem) {
  sendText("before");
  phone->binary({4, 55, 0, 1, 0});
  sendText("behind");
  phone->drop();
  EXPECT_THAT(hub->lingering, IsEmpty());
  finishAll();
  EXPECT_EQ(desktop.all<KeyEvent>().size(), 2u);
  EXPECT_EQ(typedWithAKeyDown(), 0u);
}

TEST_F(ClientSessionBacklogTest, WhereTooManyLingerWhatWaitsIsDropped) {
  hub->hasRoom = false;
  flood(50);
  phone->drop();
  EXPECT_THAT(hub->left, ElementsAre(session->id()));
  finishAll();
  EXPECT_THAT(typed().size(), testing::Lt(10u)) << "only what had been handed over";
}

TEST_F(ClientSessionBacklogTest, ACancelledSessionTypesNoMoreThanItHadBegun) {
  flood(50);
  session->cancel();
  finishAll();
  EXPECT_THAT(typed().size(), testing::Lt(10u));
  EXPECT_THAT(hub->lingering, IsEmpty());
  EXPECT_THAT(hub->left, testing::Contains(session->id()));
}

TEST_F(ClientSessionBacklogTest, ASessionThatLingersCanBeCancelled) {
  flood(50);
  phone->drop();
  session->cancel();
  finishAll();
  EXPECT_THAT(typed().size(), testing::Lt(10u));
  EXPECT_THAT(hub->left, testing::Contains(session->id()));
}

TEST_F(ClientSessionBacklogTest, ThePointerDoesNotWait) {
  flood(50);
  phone->binary({9, 0xff, 0xff, 0, 0});
  phone->binary({8, 0, 1});
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 3u);
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionBacklogTest, AllElseWaitsInItsOrder) {
  flood(50);
  phone->text(R"({"t":"getIcons","ids":[]})");
  phone->text(R"({"t":"ping"})");
  EXPECT_THAT(phone->received("pong"), IsEmpty());
  EXPECT_LT(clock.pendingTasks(), 20u) << "the other texts are not handed over yet";
  finishAll();
  EXPECT_EQ(typed(), inOrder(50));
  std::vector<std::string> kinds;
  for (const auto& message : phone->received()) kinds.emplace_back(message.at("t").as_string());
  EXPECT_THAT(kinds, testing::UnorderedElementsAre("hello", "ready", "icons", "pong"));
}

TEST_F(ClientSessionBacklogTest, WorkThatPilesUpWaits) {
  for (int message = 0; message < 10'000; ++message) phone->text(R"({"t":"reveal"})");
  phone->text(R"({"t":"ping"})");
  EXPECT_THAT(phone->incoming, IsEmpty());
  EXPECT_LT(clock.pendingTasks(), 2'000u);
  finishAll();
  EXPECT_EQ(phone->received("pong").size(), 1u);
}

TEST_F(ClientSessionBacklogTest, WhatCostsNothingIsDoneAPartAtATime) {
  flood(50);
  for (int message = 0; message < 10'000; ++message) phone->text("{}");
  phone->text(R"({"t":"ping"})");
  finishAll();
  EXPECT_EQ(phone->received("pong").size(), 1u);
}

TEST_F(ClientSessionBacklogTest, TooMuchIsNotReadAndWhatItHoldsIsLetGo) {
  holdAButtonAndAKey();
  flood(300);
  EXPECT_GT(phone->incoming.size(), 150u);
  EXPECT_LT(phone->incoming.size(), 180u) << "8 MiB are read";
  EXPECT_TRUE(holdsNothing());
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
  finishAll();
  EXPECT_EQ(typed(), inOrder(300)) << "and nothing is lost";
}

TEST_F(ClientSessionBacklogTest, AKeyThatIsStillToBePressedStaysDownWhenReadingPauses) {
  sendText("x");
  phone->binary({4, 8, 0, 1, 0});
  flood(140);  // reading pauses once
  ASSERT_FALSE(phone->asked);
  finishAll();
  EXPECT_THAT(desktop.all<KeyEvent>(), ElementsAre(KeyEvent{.keyCode = 8, .down = true}));
  phone->drop();
  EXPECT_FALSE(desktop.all<KeyEvent>().back().down);
}

TEST_F(ClientSessionBacklogTest, ManySmallTextsAreCountedWithWhatTheyTake) {
  for (int text = 0; text < 500'000; ++text) sendText("x");
  EXPECT_GT(phone->incoming.size(), 250'000u);
}

TEST_F(ClientSessionBacklogTest, APhoneThatHangsUpIsReadToItsEnd) {
  holdAButtonAndAKey();
  flood(300);
  ASSERT_FALSE(phone->asked);
  phone->hangUp();
  EXPECT_THAT(phone->incoming, IsEmpty());
  EXPECT_THAT(hub->lingering, ElementsAre(session->id()));
  finishAll();
  EXPECT_EQ(typed(), inOrder(300));
}

}  // namespace
}  // namespace orvel
