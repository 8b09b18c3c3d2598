#include "fakes/SessionFixture.hpp"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ClientSessionInputTest : SessionFixture {
  void SetUp() override { openAuthenticated(); }
};

TEST_F(ClientSessionInputTest, FramesBeforeAuthenticationAreIgnored) {
  const auto other = std::make_shared<FakeWire>(clock);
  const auto stranger = makeSession(other);
  other->open();
  other->binary({1, 5, 0, 5, 0});
  other->binary({8, 0, 1});
  clock.advance(Seconds(0.1));
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionInputTest, WithoutThePermissionAsRememberedFramesAreIgnored) {
  desktop.trusted = false;
  permission.refresh();
  desktop.trusted = true;
  phone->binary({1, 5, 0, 5, 0});
  phone->binary({8, 0, 1});
  clock.advance(Seconds(0.1));
  EXPECT_THAT(desktop.posted, IsEmpty());
  permission.refresh();
  phone->binary({8, 0, 1});
  EXPECT_EQ(desktop.posted.size(), 2u);
}

TEST_F(ClientSessionInputTest, BeforeThePermissionIsReadFramesAreIgnored) {
  PermissionGate unread(desktop);
  SessionServices fresh = servicesUnder(unread);
  const auto wire = std::make_shared<FakeWire>(clock);
  const auto early = std::make_shared<ClientSession>(std::make_unique<FakeTransport>(wire), hub, fresh);
  early->start();
  wire->open();
  authenticate(*wire);
  ASSERT_TRUE(early->authenticated());
  wire->binary({8, 0, 1});
  EXPECT_THAT(desktop.posted, IsEmpty());
  unread.refresh();
  wire->binary({8, 0, 1});
  EXPECT_EQ(desktop.posted.size(), 2u);
}

TEST_F(ClientSessionInputTest, FramesThatDoNotDecodeAreIgnored) {
  phone->binary({0});
  phone->binary({10, 1, 2, 3, 4});
  phone->binary({1, 5});
  phone->binary({5, 9, 0, 'x'});
  EXPECT_THAT(desktop.posted, IsEmpty());
  phone->text(R"({"t":"ping"})");
  EXPECT_EQ(phone->received("pong").size(), 1u) << "and the session stays";
}

TEST_F(ClientSessionInputTest, MotionWaitsForTheClock) {
  phone->binary({1, 3, 0, 0, 0});
  phone->binary({1, 0xff, 0xff, 2, 0});
  EXPECT_THAT(desktop.posted, IsEmpty());
  clock.runDue();
  EXPECT_THAT(desktop.all<MouseEvent>(),
              ElementsAre(MouseEvent{.position = Point{102, 102}, .deltaX = 2, .deltaY = 2}));
}

TEST_F(ClientSessionInputTest, AbsoluteMotionIsPostedAtOnce) {
  phone->binary({9, 0xff, 0xff, 0, 0});
  EXPECT_THAT(desktop.all<MouseEvent>(), ElementsAre(MouseEvent{.position = Point{1000, 0}}));
}

TEST_F(ClientSessionInputTest, AClickIsAPressAndAReleaseOfItsCount) {
  phone->binary({8, 0, 2});
  EXPECT_THAT(desktop.all<MouseEvent>(),
              ElementsAre(MouseEvent{.type = MouseEventType::leftDown, .position = Point{100, 100}, .clickState = 2},
                          MouseEvent{.type = MouseEventType::leftUp, .position = Point{100, 100}, .clickState = 2}));
}

TEST_F(ClientSessionInputTest, AButtonFrameIsOnePressOrRelease) {
  phone->binary({2, 1, 1});
  phone->binary({2, 1, 2});
  EXPECT_THAT(
      desktop.all<MouseEvent>(),
      ElementsAre(
          MouseEvent{.type = MouseEventType::rightDown, .buttonCode = 1, .position = Point{100, 100}, .clickState = 1},
          MouseEvent{.type = MouseEventType::rightUp, .buttonCode = 1, .position = Point{100, 100}, .clickState = 1}));
}

TEST_F(ClientSessionInputTest, ScrollGoesToTheWheels) {
  phone->binary({3, 0xfd, 0xff, 10, 0});
  EXPECT_THAT(desktop.all<ScrollEvent>(), ElementsAre(ScrollEvent{.wheel1 = 10, .wheel2 = -3}));
}

TEST_F(ClientSessionInputTest, EachModifierBitHasItsFlag) {
  const std::pair<std::uint8_t, std::uint64_t> cases[] = {
      {0x00, 0x0},      {0x01, 0x100000}, {0x02, 0x20000},  {0x04, 0x80000}, {0x08, 0x40000},
      {0x10, 0x800000}, {0x03, 0x120000}, {0x1f, 0x9e0000}, {0xe0, 0x0},
  };
  for (const auto& [modifiers, flags] : cases) {
    phone->binary({4, 0x34, 0x12, 1, modifiers});
    EXPECT_EQ(desktop.all<KeyEvent>().back(), (KeyEvent{.keyCode = 0x1234, .down = true, .flags = flags}))
        << int{modifiers};
  }
  phone->binary({4, 0x34, 0x12, 0, 0});
  EXPECT_FALSE(desktop.all<KeyEvent>().back().down);
}

std::vector<std::uint8_t> textFrame(const std::string& text) {
  std::vector<std::uint8_t> frame = {5, static_cast<std::uint8_t>(text.size() & 0xff),
                                     static_cast<std::uint8_t>(text.size() >> 8)};
  frame.insert(frame.end(), text.begin(), text.end());
  return frame;
}

std::vector<std::uint8_t> appFrame(std::uint8_t action, const std::string& id) {
  std::vector<std::uint8_t> frame = {7, action, static_cast<std::uint8_t>(id.size()), 0};
  frame.insert(frame.end(), id.begin(), id.end());
  return frame;
}

TEST_F(ClientSessionInputTest, TextIsTypedOffTheNetworkThread) {
  phone->binary(textFrame("h\u00e9"));
  EXPECT_THAT(desktop.posted, IsEmpty());
  clock.runDue();
  EXPECT_THAT(desktop.all<TextEvent>(), ElementsAre(TextEvent{u"h\u00e9"}));
}

TEST_F(ClientSessionInputTest, TextsAreTypedInTheOrderInWhichTheyCame) {
  phone->binary(textFrame("one"));
  phone->binary(textFrame("two"));
  phone->binary(textFrame("three"));
  clock.runDue();
  std::u16string typed;
  for (const TextEvent& event : desktop.all<TextEvent>()) typed += event.text;
  EXPECT_EQ(typed, u"onetwothree");
}

TEST_F(ClientSessionInputTest, MotionDoesNotWaitForTheLongestText) {
  const std::string longest(65'535, 'x');
  phone->binary(textFrame(longest));
  phone->binary({9, 0xff, 0xff, 0, 0});
  phone->text(R"({"t":"ping"})");
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 1u);
  EXPECT_EQ(phone->received("pong").size(), 1u);
  EXPECT_THAT(desktop.all<TextEvent>(), IsEmpty());
  clock.runDue();
  std::size_t typed = 0;
  for (const TextEvent& event : desktop.all<TextEvent>()) typed += event.text.size();
  EXPECT_EQ(typed, longest.size());
}

TEST_F(ClientSessionInputTest, TextAndApplicationsAreSeenToWhenThePhoneHasLeft) {
  computer.running = {{.instance = 7, .identifier = "ab", .name = {}, .location = {}, .isRegular = true}};
  phone->binary(textFrame("the end"));
  phone->binary(appFrame(1, "ab"));
  phone->drop();
  session.reset();
  clock.runDue();
  EXPECT_THAT(desktop.all<TextEvent>(), ElementsAre(TextEvent{u"the end"}));
  clock.advance(Seconds(1));
  EXPECT_THAT(computer.terminated, ElementsAre(7u));
}

constexpr std::uint8_t keyReturn = 36;
constexpr std::uint8_t keyShift = 56;

std::vector<std::uint8_t> keyFrame(std::uint8_t keyCode, bool down) {
  return {4, keyCode, 0, static_cast<std::uint8_t>(down ? 1 : 0), 0};
}

/// What was typed and pressed, in order: texts as they are, "+36" and "-36" for keys, "media" for each event of those.
std::vector<std::string> typedAndPressed(const RecordingDesktop& desktop) {
  std::vector<std::string> log;
  for (const PostedEvent& event : desktop.posted) {
    const auto* text = std::get_if<TextEvent>(&event);
    const auto* key = std::get_if<KeyEvent>(&event);
    if (text) log.emplace_back(text->text.begin(), text->text.end());
    if (key) log.push_back((key->down ? "+" : "-") + std::to_string(key->keyCode));
    if (std::holds_alternative<SystemDefinedEvent>(event)) log.emplace_back("media");
  }
  return log;
}

TEST_F(ClientSessionInputTest, AKeyComesAfterTheTextsBeforeIt) {
  phone->binary(textFrame(std::string(20, 'x')));
  phone->binary(textFrame("y"));
  phone->binary(keyFrame(keyReturn, true));
  phone->binary(keyFrame(keyReturn, false));
  phone->binary(textFrame("z"));
  EXPECT_THAT(desktop.posted, IsEmpty());
  clock.runDue();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("xxxxxxxxxxxxxxxx", "xxxx", "y", "+36", "-36", "z"));
  EXPECT_EQ(desktop.flushed, desktop.posted.size() - 1) << "a text needs no flush";
}

TEST_F(ClientSessionInputTest, AMediaKeyComesAfterTheTextsAndKeysBeforeIt) {
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyReturn, true));
  phone->binary({6, 16});
  phone->binary(keyFrame(keyReturn, false));
  EXPECT_THAT(desktop.posted, IsEmpty());
  clock.runDue();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("x", "+36", "media", "media", "-36"));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionInputTest, KeysThatAreHeldAroundATextStayAroundIt) {
  phone->binary(keyFrame(keyShift, true));
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("+56")) << "nothing was to be typed";
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyShift, false));
  clock.runDue();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("+56", "x", "-56"));
}

TEST_F(ClientSessionInputTest, OnceATextIsTypedKeysActAtOnceAgain) {
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyReturn, true));
  clock.advance(Seconds(1));
  phone->binary(keyFrame(keyReturn, false));
  phone->binary({6, 16});
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("x", "+36", "-36", "media", "media"));
}

TEST_F(ClientSessionInputTest, PhonesDoNotWaitForEachOthersTexts) {
  const auto other = connectAnother();
  phone->binary(textFrame("x"));
  other->binary(keyFrame(keyReturn, true));
  other->binary({6, 16});
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("+36", "media", "media"));
}

TEST_F(ClientSessionInputTest, WhatAnotherPhoneHoldsDoesNotModifyAKey) {
  const auto other = connectAnother();
  other->binary(keyFrame(keyShift, true));
  phone->binary(keyFrame(keyReturn, true));
  EXPECT_THAT(desktop.all<KeyEvent>().back().unwantedKeys, ElementsAre(keyShift));
  other->binary(keyFrame(keyReturn, true));
  EXPECT_THAT(desktop.all<KeyEvent>().back().unwantedKeys, IsEmpty());
}

TEST_F(ClientSessionInputTest, ClicksAndWheelsDoNotWaitForTexts) {
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyReturn, true));
  phone->binary({8, 0, 1});
  phone->binary({3, 0, 0, 40, 0});
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 2u);
  EXPECT_EQ(desktop.all<ScrollEvent>().size(), 1u);
  EXPECT_THAT(typedAndPressed(desktop), IsEmpty());
}

TEST_F(ClientSessionInputTest, WhatWaitsForAnApplicationIsNoText) {
  phone->binary(appFrame(0, "ab"));
  phone->binary(keyFrame(keyReturn, true));
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("+36"));
}

TEST_F(ClientSessionInputTest, AFloodOfKeysBehindATextIsKeptInOrderUntilItIsTyped) {
  phone->binary(textFrame("x"));
  for (int stroke = 0; stroke < 5000; ++stroke) phone->binary(keyFrame(keyReturn, stroke % 2 == 0));
  EXPECT_THAT(desktop.all<KeyEvent>(), IsEmpty());
  clock.advance(Seconds(60));
  EXPECT_THAT(typedAndPressed(desktop).front(), "x");
  EXPECT_THAT(phone->incoming, IsEmpty());
  EXPECT_EQ(desktop.all<KeyEvent>().size(), 5000u);
}

TEST_F(ClientSessionInputTest, KeysBehindTheTextsOfAPhoneThatHasLeftArePressedAndReleased) {
  phone->binary(textFrame("the end"));
  phone->binary(keyFrame(keyReturn, true));
  phone->binary(keyFrame(keyReturn, false));
  phone->binary(keyFrame(keyShift, true));
  phone->drop();
  session.reset();
  clock.runDue();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("the end", "+36", "-36", "+56", "-56"));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionInputTest, WhatIsHeldWhenAPhoneLeavesDoesNotWaitForItsTexts) {
  phone->binary(keyFrame(keyShift, true));
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyShift, false));
  phone->drop();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("+56", "-56"));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
}

TEST_F(ClientSessionInputTest, NoKeyIsPressedBehindATextThatWasBrokenOff) {
  phone->binary(textFrame("half a message"));
  phone->binary(keyFrame(keyReturn, true));
  phone->binary({6, 16});
  keyboard.stop();
  clock.runDue();
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionInputTest, ThePermissionCountsForAKeyWhenItsFrameComes) {
  phone->binary(textFrame("x"));
  phone->binary(keyFrame(keyReturn, true));
  desktop.trusted = false;
  permission.refresh();
  phone->binary(keyFrame(keyReturn, false));
  clock.runDue();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("x", "+36")) << "as for its text";
  phone->drop();
  EXPECT_THAT(typedAndPressed(desktop), ElementsAre("x", "+36", "-36"));
}

TEST_F(ClientSessionInputTest, AMediaFrameIsOnePressAndRelease) {
  phone->binary({6, 16});
  EXPECT_THAT(desktop.all<SystemDefinedEvent>(), ElementsAre(testing::Field(&SystemDefinedEvent::data1, 0x100a00),
                                                             testing::Field(&SystemDefinedEvent::data1, 0x100b00)));
}

TEST_F(ClientSessionInputTest, MediaKeysThatThereAreNotAreIgnored) {
  for (const int code : {4, 5, 6, 8, 15, 21, 255}) phone->binary({6, static_cast<std::uint8_t>(code)});
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionInputTest, AnApplicationFrameQuitsWithOneAndActivatesWithAnythingElse) {
  computer.running = {{.instance = 7, .identifier = "ab", .name = {}, .location = {}, .isRegular = true}};
  phone->binary(appFrame(0, "ab"));
  phone->binary(appFrame(2, "ab"));
  EXPECT_THAT(computer.activated, IsEmpty()) << "not on the network thread";
  clock.runDue();
  EXPECT_THAT(computer.activated, ElementsAre(7u, 7u));
  EXPECT_THAT(computer.terminated, IsEmpty());
  phone->binary(appFrame(1, "ab"));
  clock.runDue();
  EXPECT_THAT(computer.terminated, ElementsAre(7u));
  EXPECT_EQ(computer.activated.size(), 2u);
}

TEST_F(ClientSessionInputTest, WithoutThePermissionNothingIsTypedPressedOrStarted) {
  desktop.trusted = false;
  permission.refresh();
  computer.known = {{"ab", "/ab"}};
  phone->binary(textFrame("text"));
  phone->binary({6, 16});
  phone->binary(appFrame(0, "ab"));
  clock.runDue();
  EXPECT_THAT(desktop.posted, IsEmpty());
  EXPECT_THAT(computer.opened, IsEmpty());
}

}  // namespace
}  // namespace orvel
