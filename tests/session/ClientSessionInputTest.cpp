#include "fakes/SessionFixture.hpp"

#include <gmock/gmock.h>

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
  EXPECT_THAT(desktop.all<MouseEvent>(), ElementsAre(MouseEvent{.position = {102, 102}, .deltaX = 2, .deltaY = 2}));
}

TEST_F(ClientSessionInputTest, AbsoluteMotionIsPostedAtOnce) {
  phone->binary({9, 0xff, 0xff, 0, 0});
  EXPECT_THAT(desktop.all<MouseEvent>(), ElementsAre(MouseEvent{.position = {1000, 0}}));
}

TEST_F(ClientSessionInputTest, AClickIsAPressAndAReleaseOfItsCount) {
  phone->binary({8, 0, 2});
  EXPECT_THAT(desktop.all<MouseEvent>(),
              ElementsAre(MouseEvent{.type = MouseEventType::leftDown, .position = {100, 100}, .clickState = 2},
                          MouseEvent{.type = MouseEventType::leftUp, .position = {100, 100}, .clickState = 2}));
}

TEST_F(ClientSessionInputTest, AButtonFrameIsOnePressOrRelease) {
  phone->binary({2, 1, 1});
  phone->binary({2, 1, 2});
  EXPECT_THAT(
      desktop.all<MouseEvent>(),
      ElementsAre(
          MouseEvent{.type = MouseEventType::rightDown, .buttonCode = 1, .position = {100, 100}, .clickState = 1},
          MouseEvent{.type = MouseEventType::rightUp, .buttonCode = 1, .position = {100, 100}, .clickState = 1}));
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

}  // namespace
}  // namespace orvel
