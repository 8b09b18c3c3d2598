#include "fakes/FakeClock.hpp"
#include "fakes/FakeLoginItemService.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/FakePanelHost.hpp"
#include "ui/LoginItem.hpp"
#include "ui/MenuBarExtra.hpp"
#include "ui/PanelWidgets.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct MenuBarExtraTest : testing::Test {
  void SetUp() override {
    extra.show([this](bool hasIcon) { decided.push_back(hasIcon); });
  }

  /// The open panel; nothing when there is none.
  static QWidget* panel() {
    PanelWidgets::settle();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->isVisible()) return widget;
    }
    return nullptr;
  }

  static void clickElsewhere() { send(QEvent(QEvent::WindowDeactivate)); }

  static void pressEscape() { send(QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier)); }

  template <class Event>
  static void send(Event event) {
    QWidget* open = panel();
    if (open == nullptr) FAIL() << "no panel is open";
    QCoreApplication::sendEvent(open, &event);
    PanelWidgets::settle();
  }

  FakeClock clock;
  FakeLoginItemService list;
  LoginItem loginItem{list};
  FakePanelHost host;
  FakeStatusItem icon;
  FakeAppearance appearance;
  FakeForeground foreground;
  FakePressWatch presses;
  std::vector<bool> decided;
  MenuBarExtra extra{{.appearance = appearance,
                      .clock = clock,
                      .foreground = foreground,
                      .host = host,
                      .loginItem = loginItem,
                      .presses = presses,
                      .statusItem = icon}};
};

TEST_F(MenuBarExtraTest, StartsWithTheIconAlone) {
  EXPECT_THAT(icon.symbols, ElementsAre(Symbol::cursorArrow));
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, TellsWhetherThereIsAnIcon) {
  EXPECT_THAT(decided, IsEmpty());
  icon.decide();
  EXPECT_THAT(decided, ElementsAre(true));
}

TEST_F(MenuBarExtraTest, TheIconHasRaysWhilePhonesAreConnected) {
  host.now.clients = {"A"};
  extra.refresh();
  host.now.clients = {"A", "B"};
  extra.refresh();
  EXPECT_THAT(icon.symbols, ElementsAre(Symbol::cursorArrow, Symbol::cursorArrowRays));
  host.now.clients = {};
  extra.refresh();
  EXPECT_THAT(icon.symbols, ElementsAre(Symbol::cursorArrow, Symbol::cursorArrowRays, Symbol::cursorArrow));
}

TEST_F(MenuBarExtraTest, AClickOpensThePanelUnderTheIconInFront) {
  icon.where = Rect{{400, 0}, {24, 24}};
  icon.click();
  ASSERT_NE(panel(), nullptr);
  EXPECT_EQ(panel()->windowTitle(), "Orvel");
  EXPECT_TRUE(panel()->windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_EQ(panel()->geometry().top(), 28);
  EXPECT_NEAR(panel()->geometry().center().x(), 412, 1);
  EXPECT_THAT(foreground.brought, ElementsAre(""));
  EXPECT_EQ(foreground.keptOut, 1);
  EXPECT_THAT(host.asked, ElementsAre("refreshPermission"));
}

TEST_F(MenuBarExtraTest, ASecondClickClosesIt) {
  icon.click();
  ASSERT_NE(panel(), nullptr);
  icon.click();
  EXPECT_EQ(panel(), nullptr);
  icon.click();
  EXPECT_NE(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, AClickElsewhereClosesIt) {
  icon.click();
  clickElsewhere();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, AnActivationThatBouncesDoesNotCloseIt) {
  foreground.settles = Seconds(0.5);
  icon.click();
  clickElsewhere();
  EXPECT_NE(panel(), nullptr);
  send(QEvent(QEvent::WindowActivate));
  clock.advance(Seconds(0.4));
  clickElsewhere();
  EXPECT_NE(panel(), nullptr);
  clock.advance(Seconds(0.1));
  clickElsewhere();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, APanelThatIsBroughtAgainMayBounceAgain) {
  foreground.settles = Seconds(0.5);
  icon.click();
  clock.advance(Seconds(60));
  extra.openPanel("token");
  clickElsewhere();
  EXPECT_NE(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, APressElsewhereOrEscapeClosesItWhileItsActivationSettles) {
  foreground.settles = Seconds(0.5);
  icon.click();
  QCursor::setPos(panel()->geometry().bottomRight() + QPoint(5, 5));
  presses.pressed();
  EXPECT_EQ(panel(), nullptr);
  clock.advance(Seconds(1));
  icon.click();
  pressEscape();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, APressElsewhereClosesItEvenWhereTheKeyboardStays) {
  EXPECT_FALSE(presses.pressed);
  icon.click();
  QCursor::setPos(panel()->geometry().center());
  presses.pressed();
  EXPECT_NE(panel(), nullptr);
  QCursor::setPos(panel()->geometry().bottomRight() + QPoint(5, 5));
  presses.pressed();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_FALSE(presses.pressed) << "nobody listens while it is closed";
}

TEST_F(MenuBarExtraTest, EscapeClosesIt) {
  icon.click();
  pressEscape();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, AClickOnTheIconThatTakesTheKeyboardFirstOnlyClosesIt) {
  icon.click();
  clickElsewhere();
  clock.advance(Seconds(0.15));
  icon.click();
  EXPECT_EQ(panel(), nullptr);
  clock.advance(Seconds(0.15));
  icon.click();
  EXPECT_NE(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, TheKeyboardThatGoesOnlyAfterTheClickCountsForNothing) {
  icon.click();
  QWidget* const open = panel();
  ASSERT_NE(open, nullptr);
  icon.click();
  QEvent late(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(open, &late);
  icon.click();
  EXPECT_NE(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, AClickAWhileAfterItWasClosedOpensItAgain) {
  icon.click();
  clickElsewhere();
  clock.advance(Seconds(0.45));
  icon.click();
  EXPECT_NE(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, TheCodeIsHiddenAgainWhenItIsOpenedAgain) {
  icon.click();
  ASSERT_TRUE(PanelWidgets{*panel()}.press("Show code"));
  EXPECT_NE(PanelWidgets{*panel()}.button("Hide code"), nullptr);
  icon.click();
  icon.click();
  EXPECT_NE(PanelWidgets{*panel()}.button("Show code"), nullptr);
}

TEST_F(MenuBarExtraTest, WhatChangesShowsWhileItIsOpen) {
  icon.click();
  host.now.clients = {"Anna's iPhone"};
  extra.refresh();
  EXPECT_THAT(PanelWidgets{*panel()}.texts(), testing::Contains("Anna's iPhone"));
}

TEST_F(MenuBarExtraTest, ItGrowsAndShrinksWithWhatItShows) {
  icon.click();
  const int before = panel()->height();
  ASSERT_TRUE(PanelWidgets{*panel()}.press("Show code"));
  EXPECT_GT(panel()->height(), before + 168);
  ASSERT_TRUE(PanelWidgets{*panel()}.press("Hide code"));
  EXPECT_EQ(panel()->height(), before);
}

TEST_F(MenuBarExtraTest, AThousandPhonesDoNotPushItOffTheScreen) {
  host.now.clients.assign(1000, "Phone");
  icon.click();
  ASSERT_NE(panel(), nullptr);
  EXPECT_TRUE(panel()->screen()->availableGeometry().contains(panel()->geometry()));
}

TEST_F(MenuBarExtraTest, FollowsTheLookWhileItIsOpen) {
  icon.click();
  const auto ground = [] { return panel()->grab().toImage().pixelColor(3, 3).lightness(); };
  EXPECT_GT(ground(), 200);
  appearance.dark = true;
  appearance.changed();
  EXPECT_LT(ground(), 80);
}

TEST_F(MenuBarExtraTest, WithoutATrayItOpensAsANormalWindow) {
  icon.hasTray = false;
  icon.where.reset();
  extra.openPanel("token");
  ASSERT_NE(panel(), nullptr);
  EXPECT_FALSE(panel()->windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_THAT(foreground.brought, ElementsAre("token"));
  EXPECT_EQ(foreground.keptOut, 0);
  EXPECT_FALSE(presses.pressed);
  clickElsewhere();
  EXPECT_NE(panel(), nullptr);
  panel()->close();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, DoesNotHoldUpTheEndOfTheLogin) {
  for (const bool hasTray : {true, false}) {
    icon.hasTray = hasTray;
    extra.openPanel("");
    ASSERT_NE(panel(), nullptr);
    EXPECT_TRUE(panel()->close()) << "who ends the login asks every window";
    EXPECT_EQ(panel(), nullptr);
  }
}

TEST_F(MenuBarExtraTest, AnIconThatComesLateOpensThePanelInsteadOfTheWindow) {
  icon.hasTray = false;
  extra.openPanel("");
  ASSERT_NE(panel(), nullptr);
  icon.hasTray = true;
  icon.click();
  ASSERT_NE(panel(), nullptr);
  EXPECT_TRUE(panel()->windowFlags().testFlag(Qt::FramelessWindowHint));
}

TEST_F(MenuBarExtraTest, AnotherStartBringsTheOpenPanelToTheFront) {
  icon.click();
  const QWidget* before = panel();
  extra.openPanel("token");
  EXPECT_EQ(panel(), before);
  EXPECT_THAT(foreground.brought, ElementsAre("", "token"));
}

TEST_F(MenuBarExtraTest, AnotherStartOpensItInTheUsualCornerWhenNobodySaysWhereTheIconIs) {
  icon.where.reset();
  extra.openPanel("");
  const QRect free = panel()->screen()->availableGeometry();
  EXPECT_EQ(panel()->geometry().right(), free.right() - 4);
  EXPECT_EQ(panel()->geometry().top(), free.top() + 4);
}

TEST_F(MenuBarExtraTest, AnotherStartOpensItWhereTheIconWasClickedLast) {
  icon.where.reset();
  QCursor::setPos(300, 10);
  icon.click();
  ASSERT_NE(panel(), nullptr);
  icon.click();
  ASSERT_EQ(panel(), nullptr);
  QCursor::setPos(600, 400);
  extra.openPanel("");
  ASSERT_NE(panel(), nullptr);
  EXPECT_NEAR(panel()->geometry().center().x(), 300, 1);
}

TEST_F(MenuBarExtraTest, AHugeFontDoesNotPushItOffTheScreen) {
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 72};
  icon.click();
  ASSERT_TRUE(PanelWidgets{*panel()}.press("Show code"));
  EXPECT_TRUE(panel()->screen()->availableGeometry().contains(panel()->geometry()));
}

TEST_F(MenuBarExtraTest, ScrollsToTheCodeThatHasJustBeenShown) {
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 36};
  host.now.accessibilityGranted = false;
  icon.click();
  ASSERT_TRUE(PanelWidgets{*panel()}.press("Show code"));
  const auto* viewport = panel()->findChild<QScrollArea*>()->viewport();
  const auto* code = panel()->findChild<QWidget*>("qrCode");
  ASSERT_NE(code, nullptr);
  EXPECT_TRUE(viewport->rect().contains({code->mapTo(viewport, QPoint(0, 0)), code->size()}));
}

TEST_F(MenuBarExtraTest, APressInItsOwnMenuDoesNotCloseIt) {
  icon.click();
  QCursor::setPos(panel()->geometry().bottomRight() + QPoint(5, 5));
  QMenu menu;
  menu.addAction("Copy");
  menu.popup(QCursor::pos());
  PanelWidgets::settle();
  ASSERT_TRUE(presses.pressed);
  presses.pressed();
  menu.close();
  ASSERT_NE(panel(), nullptr);
  presses.pressed();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(MenuBarExtraTest, TheKeyboardScrollsToWhatItReaches) {
  host.now.clients.assign(100, "Phone");
  icon.click();
  auto* bar = panel()->findChild<QScrollArea*>()->verticalScrollBar();
  send(QKeyEvent(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier));
  EXPECT_GT(bar->value(), 0);
  send(QKeyEvent(QEvent::KeyPress, Qt::Key_PageUp, Qt::NoModifier));
  EXPECT_EQ(bar->value(), 0);
  PanelWidgets{*panel()}.button("New code")->setFocus();
  send(QKeyEvent(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier));
  EXPECT_EQ(panel()->focusWidget(), PanelWidgets{*panel()}.button("Quit"));
  EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(MenuBarExtraTest, ClosingWhatIsNotOpenDoesNothing) {
  extra.closePanel();
  EXPECT_EQ(panel(), nullptr);
  EXPECT_THAT(foreground.brought, IsEmpty());
}

}  // namespace
}  // namespace orvel
