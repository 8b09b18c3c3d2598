#include "program/ProgramFixture.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace orvel {
namespace {

using phone::MouseButton;
using Kind = X11Witness::Kind;

constexpr int controlKey = 37;

struct PointerTest : ProgramFixture {};

TEST_F(PointerTest, APairedPhoneMovesThePointer) {
  auto phone = connectPaired();
  phone.sendFrame(phone::moveAbsoluteFrame(0.25, 0.5));
  EXPECT_TRUE(waitForPointer(320, 400));
  phone.sendFrame(phone::moveFrame(100, -50));
  EXPECT_TRUE(waitForPointer(420, 350));
}

TEST_F(PointerTest, AStrangerDoesNot) {
  const auto before = witness.pointer();
  auto phone = connect();
  ASSERT_TRUE(phone.greeting(phoneTimeout));
  phone.sendFrame(phone::moveAbsoluteFrame(0.25, 0.5));
  phone.sendFrame(phone::clickFrame(MouseButton::left, 1));
  settle(phone);
  EXPECT_TRUE(witness.catchUp().empty());
  EXPECT_EQ(witness.pointer(), before);
}

TEST_F(PointerTest, ADragArrivesAsOne) {
  auto phone = connectPaired();
  phone.sendFrame(phone::moveAbsoluteFrame(0.25, 0.25));
  phone.sendFrame(phone::buttonFrame(MouseButton::left, true));
  phone.sendFrame(phone::moveFrame(30, 20));
  ASSERT_TRUE(waitForPointer(350, 220));
  phone.sendFrame(phone::buttonFrame(MouseButton::left, false));
  ASSERT_TRUE(waitForInput(Kind::buttonUp, 1));

  bool pressed = false;
  bool draggedThere = false;
  for (const auto& input : witness.inputs()) {
    if (input.kind == Kind::buttonDown) {
      pressed = true;
      EXPECT_EQ(std::pair(input.x, input.y), std::pair(320, 200));
    }
    if (input.kind == Kind::motion && pressed) draggedThere |= input.x == 350 && (input.state & XCB_BUTTON_MASK_1);
    if (input.kind == Kind::buttonUp) {
      EXPECT_EQ(std::pair(input.x, input.y), std::pair(350, 220));
    }
  }
  EXPECT_TRUE(draggedThere);
}

TEST_F(PointerTest, ClicksScrollAndKeysArrive) {
  auto phone = connectPaired();
  phone.sendFrame(phone::clickFrame(MouseButton::right, 1));
  EXPECT_TRUE(waitForInput(Kind::buttonDown, 3));
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 3));
  phone.sendFrame(phone::scrollFrame(0, -80));
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 5));
  phone.sendFrame(phone::keyFrame(8, true, phone::command));  // command and c
  phone.sendFrame(phone::keyFrame(8, false, phone::command));
  ASSERT_TRUE(waitForInput(Kind::keyUp, 54));
  bool copied = false;
  for (const auto& input : witness.inputs()) {
    copied |= input.kind == Kind::keyDown && input.detail == 54 && (input.state & XCB_MOD_MASK_CONTROL);
  }
  EXPECT_TRUE(copied) << "the c is pressed with Control";
}

TEST_F(PointerTest, TwoPhonesShareThePointer) {
  auto first = connectPaired("First");
  auto second = connectPaired("Second");
  first.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
  first.sendFrame(phone::buttonFrame(MouseButton::left, true));
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 1));
  for (int step = 0; step < 20; ++step) {
    first.sendFrame(phone::moveFrame(1, 0));
    second.sendFrame(phone::moveFrame(0, 1));
  }
  EXPECT_TRUE(waitForPointer(660, 420)) << "the motion of both adds up";
  second.sendFrame(phone::buttonFrame(MouseButton::left, false));
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 1));
}

TEST_F(PointerTest, TwoPhonesHoldOneModifierUntilTheLastLetsGo) {
  auto first = connectPaired("First");
  auto second = connectPaired("Second");
  first.sendFrame(phone::keyFrame(8, true, phone::command));  // c
  ASSERT_TRUE(waitForInput(Kind::keyDown, 54));
  second.sendFrame(phone::keyFrame(9, true, phone::command));  // v
  ASSERT_TRUE(waitForInput(Kind::keyDown, 55));
  first.sendFrame(phone::keyFrame(8, false, phone::command));
  ASSERT_TRUE(waitForInput(Kind::keyUp, 54));
  EXPECT_EQ(std::ranges::count(witness.catchUp(), controlKey, &X11Witness::Input::detail), 1)
      << "pressed, not released";
  second.reset();
  EXPECT_TRUE(waitForInput(Kind::keyUp, 55));
  EXPECT_TRUE(waitForInput(Kind::keyUp, controlKey));
}

TEST_F(PointerTest, ADragGoesOnWhenTheMonitorsChange) {
  auto phone = connectPaired();
  phone.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
  phone.sendFrame(phone::buttonFrame(MouseButton::left, true));
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 1));
  ASSERT_EQ(desktop.run({"xrandr", "--setmonitor", "LEFT", "640/170x800/210+0+0", "screen"}), 0);
  phone.sendFrame(phone::moveFrame(-40, -30));
  ASSERT_TRUE(waitForPointer(600, 370));
  EXPECT_TRUE(witness.inputs().back().state & XCB_BUTTON_MASK_1);
  phone.sendFrame(phone::buttonFrame(MouseButton::left, false));
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 1));
}

TEST_F(PointerTest, APhoneThatIsKilledInADragLetsGo) {
  ChildProcess phone({.command = {ORVEL_PHONE_PROGRAM, "--token", code, "press", "left", "move", "5", "5", "keydown",
                                  "a", "wait", "60"},
                      .environment = desktop.environment()});
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 1)) << phone.output();
  ASSERT_TRUE(waitForInput(Kind::keyDown, 38)) << phone.output();
  phone.signal(SIGKILL);
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 1));
  EXPECT_TRUE(waitForInput(Kind::keyUp, 38));
}

TEST_F(PointerTest, APhoneThatIsResetInADragLetsGo) {
  auto phone = connectPaired();
  phone.sendFrame(phone::buttonFrame(MouseButton::middle, true));
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 2));
  phone.reset();
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 2));
}

TEST_F(PointerTest, APhoneThatTakesLeaveInADragLetsGo) {
  auto phone = connectPaired();
  phone.sendFrame(phone::buttonFrame(MouseButton::left, true));
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 1));
  EXPECT_FALSE(phone.close(phoneTimeout));
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 1));
}

TEST_F(PointerTest, OfTwoMonitorsOfUnequalSizeTheFirstIsThePhonesCanvas) {
  ASSERT_EQ(desktop.run({"xrandr", "--setmonitor", "LEFT", "640/170x800/210+0+0", "screen"}), 0);
  ASSERT_EQ(desktop.run({"xrandr", "--setmonitor", "RIGHT", "500/170x400/210+640+0", "none"}), 0);
  auto phone = connectPaired();
  // The host hears of the change on its own thread; until then the whole screen is one monitor.
  for (int attempt = 0; attempt < 1000 && witness.pointer() != std::pair(320, 400); ++attempt) {
    phone.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
    settle(phone);
  }
  ASSERT_EQ(witness.pointer(), std::pair(320, 400));
  phone.sendFrame(phone::moveAbsoluteFrame(1, 0.25));
  EXPECT_TRUE(waitForPointer(640, 200)) << "the far edge is the edge itself, not the last column before it";
  phone.sendFrame(phone::moveFrame(600, 500));
  EXPECT_TRUE(waitForPointer(1139, 700)) << "relative motion ends at the rectangle around both, gaps included";
}

TEST_F(PointerTest, RevealCirclesAndComesBack) {
  auto phone = connectPaired();
  phone.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
  ASSERT_TRUE(witness.waitForCount(1));
  ASSERT_EQ(witness.inputs().back().x, 640);
  witness.forget();
  phone.send({{"t", "reveal"}});
  ASSERT_TRUE(witness.waitForCount(12));
  EXPECT_EQ(witness.inputs().front().x, 666);
  EXPECT_TRUE(waitForPointer(640, 400));
}

}  // namespace
}  // namespace orvel
