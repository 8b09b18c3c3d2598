#include "fakes/FakeLoginItemService.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/FakePanelHost.hpp"
#include "ui/LoginItem.hpp"
#include "ui/PanelModel.hpp"
#include "ui/PanelView.hpp"
#include "ui/PanelWidgets.hpp"
#include "ui/QRMaker.hpp"
#include "ui/QRView.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <string>

namespace orvel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

struct PanelViewTest : testing::Test {
  QImage picture() {
    view.resize(view.wholeSize());
    return view.grab().toImage();
  }

  const QLabel* label(const QString& text) const {
    for (const auto* label : view.findChildren<QLabel*>()) {
      if (label->text() == text && label->isVisibleTo(&view)) return label;
    }
    return nullptr;
  }

  FakeLoginItemService list;
  LoginItem loginItem{list};
  FakePanelHost host;
  FakeAppearance appearance;
  PanelModel model{host, loginItem};
  int changes = 0;
  PanelView view{model, appearance, [this] { ++changes; }};
  PanelWidgets widgets{view};

  void SetUp() override { view.refresh(); }
};

TEST_F(PanelViewTest, ShowsTheTextsTopToBottom) {
  host.now.clients = {"Anna's iPhone"};
  host.now.mirroring = true;
  host.now.lastError = "Out of order.";
  view.refresh();
  EXPECT_THAT(widgets.texts(), ElementsAre("Orvel", "1 phone connected", "Connected", "Anna's iPhone",
                                           "Sharing your screen", "Out of order."));
  host.now.accessibilityGranted = false;
  ASSERT_TRUE(widgets.press("Show code"));
  EXPECT_THAT(widgets.texts(),
              ElementsAre("Orvel", "Waiting for permission", "Accessibility is off",
                          "macOS will not let Orvel move the cursor until you tick it under Privacy & Security → "
                          "Accessibility.",
                          "Scan this in the app", "192.168.1.23", "ABCD-EFGH-JKLM-NPQR",
                          "Or type those two into the app by hand.", "Connected", "Anna's iPhone",
                          "Sharing your screen", "Out of order."));
}

TEST_F(PanelViewTest, ButtonsDoWhatTheySay) {
  host.now.accessibilityGranted = false;
  view.refresh();
  for (const char* text : {"Open Accessibility settings", "Restart", "New code", "Quit"}) {
    EXPECT_TRUE(widgets.press(text)) << text;
  }
  EXPECT_THAT(host.asked, ElementsAre("requestPermission", "restart", "renewCode", "quit"));
}

TEST_F(PanelViewTest, TheLinkTurnsIntoItsOpposite) {
  EXPECT_TRUE(widgets.press("Show code"));
  EXPECT_EQ(widgets.button("Show code"), nullptr);
  EXPECT_TRUE(widgets.press("Hide code"));
  EXPECT_EQ(widgets.button("Hide code"), nullptr);
  EXPECT_THAT(widgets.texts(), Not(Contains("Scan this in the app")));
}

TEST_F(PanelViewTest, TheSwitchShowsWhatIsAndNotWhatWasWished) {
  ASSERT_TRUE(widgets.press("Start at login"));
  EXPECT_TRUE(list.isEntered);
  EXPECT_TRUE(widgets.button("Start at login")->isChecked());
  list.fails = true;
  ASSERT_TRUE(widgets.press("Start at login"));
  EXPECT_TRUE(widgets.button("Start at login")->isChecked());
  list.isEntered = false;
  view.refresh();
  EXPECT_FALSE(widgets.button("Start at login")->isChecked());
}

TEST_F(PanelViewTest, ANewCodeCannotBeAskedForWhileOneIsMade) {
  host.now.isRenewingCode = true;
  view.refresh();
  EXPECT_FALSE(widgets.press("New code"));
  EXPECT_TRUE(widgets.press("Restart"));
}

TEST_F(PanelViewTest, OnlyWhatDiffersIsMadeAnew) {
  const auto* restart = widgets.button("Restart");
  const auto* link = widgets.button("Show code");
  host.now.clients = {"Anna's iPhone"};
  view.refresh();
  EXPECT_EQ(widgets.button("Restart"), restart);
  EXPECT_NE(widgets.button("Show code"), link);
}

TEST_F(PanelViewTest, TellsWhenItShowsSomethingElse) {
  const int before = changes;
  view.refresh();
  EXPECT_EQ(changes, before);
  ASSERT_TRUE(widgets.press("Show code"));
  EXPECT_EQ(changes, before + 1);
}

TEST_F(PanelViewTest, TheKeyboardsFocusStaysOnItsControl) {
  view.show();
  widgets.button("Show code")->setFocus();
  ASSERT_TRUE(widgets.press("Show code"));
  EXPECT_EQ(view.focusWidget(), widgets.button("Hide code"));
}

TEST_F(PanelViewTest, TabGoesThroughTheControlsTopToBottom) {
  host.now.accessibilityGranted = false;
  ASSERT_TRUE(widgets.press("Show code"));
  host.now.clients = {"Anna's iPhone"};
  view.refresh();
  std::vector<std::string> order;
  const QWidget* first = widgets.button("Open Accessibility settings");
  const QWidget* control = first;
  do {
    if (const auto* button = qobject_cast<const QAbstractButton*>(control);
        button != nullptr && button->isVisibleTo(&view)) {
      order.push_back(button->text().toStdString());
    }
    control = control->nextInFocusChain();
  } while (control != first);
  EXPECT_THAT(order,
              ElementsAre("Open Accessibility settings", "Hide code", "Start at login", "Restart", "New code", "Quit"));
}

TEST_F(PanelViewTest, NamesAreTextsAndNothingElse) {
  host.now.clients = {"<b>bold</b><img src='/etc/passwd'>", "two\nlines\tand a tab"};
  host.now.lastError = "<i>error</i>";
  view.refresh();
  EXPECT_THAT(widgets.texts(), Contains("<b>bold</b><img src='/etc/passwd'>"));
  EXPECT_THAT(widgets.texts(), Contains("two lines and a tab"));
  for (const auto* label : view.findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(PanelViewTest, ALongNameDoesNotWidenThePanel) {
  const QSize before = view.wholeSize();
  host.now.clients = {std::string(100'000, 'W')};
  view.refresh();
  EXPECT_EQ(view.wholeSize().width(), before.width());
  EXPECT_LT(view.wholeSize().height(), before.height() + 20);
  EXPECT_FALSE(picture().isNull());
}

struct QRViewTest : testing::TestWithParam<double> {};

TEST_P(QRViewTest, IsShownAt168PointsInPureBlackAndWhiteAtEveryScale) {
  const auto code = QRMaker::image("a few dozen characters, as a pairing needs", 190);
  ASSERT_TRUE(code);
  QRView view(*code, 168);
  QImage shown((QSizeF(view.size()) * GetParam()).toSize(), QImage::Format_RGB32);
  shown.setDevicePixelRatio(GetParam());
  shown.fill(Qt::gray);
  view.render(&shown);
  QRect dark;
  for (int y = 0; y < shown.height(); ++y) {
    for (int x = 0; x < shown.width(); ++x) {
      if (shown.pixel(x, y) == qRgb(0, 0, 0)) dark |= QRect(x, y, 1, 1);
    }
  }
  EXPECT_NEAR(dark.width(), 168 * GetParam(), 1);
  EXPECT_NEAR(dark.height(), 168 * GetParam(), 1);
  // As much light around it as scanners want: four modules.
  EXPECT_GE(dark.left() * static_cast<int>(code->modulesPerSide), 4 * dark.width());
  for (int y = dark.top(); y <= dark.bottom(); ++y) {
    for (int x = dark.left(); x <= dark.right(); ++x) {
      const bool isPure = shown.pixel(x, y) == qRgb(0, 0, 0) || shown.pixel(x, y) == qRgb(255, 255, 255);
      ASSERT_TRUE(isPure) << x << ' ' << y;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Scales, QRViewTest, testing::Values(1, 1.25, 1.5, 2, 3));

TEST_F(PanelViewTest, FollowsTheDesktopFromLightToDark) {
  const auto ground = [this] { return picture().pixelColor(2, 2).lightness(); };
  EXPECT_GT(ground(), 200);
  appearance.dark = true;
  view.restyle();
  EXPECT_LT(ground(), 80);
  for (const auto* text : view.findChildren<QLabel*>()) {
    if (!text->isVisibleTo(&view)) continue;
    EXPECT_GT(text->palette().color(QPalette::WindowText).lightness(), 120) << text->text().toStdString();
  }
}

TEST_F(PanelViewTest, FontsAndLengthsFollowTheDesktopsFont) {
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 10};
  view.restyle();
  const int width = view.wholeSize().width();
  EXPECT_NEAR(label("Orvel")->font().pointSizeF(), 10, 0.01);
  EXPECT_NEAR(label("Listening on 192.168.1.23:8787")->font().pointSizeF(), 10 * 11.0 / 13, 0.01);
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 20};
  view.restyle();
  EXPECT_NEAR(label("Orvel")->font().pointSizeF(), 20, 0.01);
  EXPECT_NEAR(view.wholeSize().width(), 2 * width, 2);
}

}  // namespace
}  // namespace orvel
