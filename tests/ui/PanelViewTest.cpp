#include "fakes/FakeLoginItemService.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/FakePanelHost.hpp"
#include "ui/Drawing.hpp"
#include "ui/LoginItem.hpp"
#include "ui/PanelModel.hpp"
#include "ui/PanelView.hpp"
#include "ui/PanelWidgets.hpp"
#include "ui/QRMaker.hpp"
#include "ui/QRView.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFrame>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmap>
#include <algorithm>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

struct PanelViewTest : testing::Test {
  QImage picture() {
    view.fit(screenWidth);
    return view.grab().toImage();
  }

  /// The circle and the symbols, top to bottom.
  std::vector<QWidget*> drawings() const {
    PanelWidgets::settle();
    std::vector<QWidget*> drawings;
    for (auto* widget : view.findChildren<QWidget*>()) {
      if (dynamic_cast<Drawing*>(widget) != nullptr && widget->isVisibleTo(&view)) drawings.push_back(widget);
    }
    return drawings;
  }

  const QLabel* label(const QString& text) const {
    for (const auto* label : view.findChildren<QLabel*>()) {
      if (label->text() == text && label->isVisibleTo(&view)) return label;
    }
    return nullptr;
  }

  QSize fittedSize() {
    view.fit(screenWidth);
    return view.size();
  }

  static constexpr int screenWidth = 1280;

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

TEST_F(PanelViewTest, AButtonThatIsBeingPressedStaysWhilePhonesComeAndGo) {
  auto* link = widgets.button("Show code");
  link->setDown(true);
  host.now.clients = {"Anna's iPhone"};
  view.refresh();
  PanelWidgets::settle();
  EXPECT_EQ(widgets.button("Show code"), link);
  EXPECT_TRUE(link->isDown());
  host.now.clients = {};
  view.refresh();
  EXPECT_EQ(widgets.button("Show code"), link);
}

TEST_F(PanelViewTest, RowsStayWithThoseWhoAreStillThere) {
  host.now.clients = {"Anna's iPhone", "Carl's iPhone"};
  view.refresh();
  const auto* carl = label("Carl's iPhone");
  host.now.clients = {"Ben's iPhone", "Carl's iPhone"};
  view.refresh();
  PanelWidgets::settle();
  EXPECT_EQ(label("Carl's iPhone"), carl);
  EXPECT_THAT(widgets.texts(), testing::AllOf(Contains("Ben's iPhone"), Not(Contains("Anna's iPhone"))));
}

TEST_F(PanelViewTest, ScreenReadersReadTopToBottomWhateverCameLast) {
  host.now.clients = {"Zoe's iPhone"};
  view.refresh();
  host.now.clients = {"Anna's iPhone", "Zoe's iPhone"};
  ASSERT_TRUE(widgets.press("Show code"));
  EXPECT_THAT(widgets.texts(),
              ElementsAre("Orvel", "2 phones connected", "Scan this in the app", "192.168.1.23", "ABCD-EFGH-JKLM-NPQR",
                          "Or type those two into the app by hand.", "Connected", "Anna's iPhone", "Zoe's iPhone"));
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
  const QSize before = fittedSize();
  host.now.clients = {std::string(100'000, 'W')};
  view.refresh();
  EXPECT_EQ(fittedSize().width(), before.width());
  EXPECT_LT(fittedSize().height(), before.height() + 20);
  EXPECT_FALSE(picture().isNull());
}

TEST_F(PanelViewTest, TheCircleHasEightPointsAndTheColourOfTheStatus) {
  // A font of 13 pixels, so that a point is one.
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 9.75};
  const auto circle = [this] {
    view.restyle();
    auto* drawing = drawings().at(0);
    EXPECT_EQ(drawing->size(), QSize(8, 8));
    return drawing->grab().toImage().pixelColor(4, 4);
  };
  const QColor grey = circle();
  EXPECT_LT(grey.saturation(), 30);
  host.now.clients = {"A"};
  EXPECT_NEAR(circle().hue(), 130, 25);
  host.now.accessibilityGranted = false;
  EXPECT_NEAR(circle().hue(), 32, 12);
  host.now.isRunning = false;
  EXPECT_TRUE(circle().hue() < 15 || circle().hue() > 345);
}

TEST_F(PanelViewTest, EachBlockButTheFirstHasADividerAbove) {
  ASSERT_TRUE(widgets.press("Show code"));
  host.now.accessibilityGranted = false;
  view.refresh();
  PanelWidgets::settle();
  const auto frames = view.findChildren<QFrame*>();
  EXPECT_EQ(std::count_if(frames.begin(), frames.end(), [](const QFrame* frame) { return frame->height() == 1; }), 5);
}

TEST_F(PanelViewTest, PhonesAndSharingHaveTheirSymbols) {
  EXPECT_EQ(drawings().size(), 1U);
  host.now.clients = {"A", "B"};
  host.now.mirroring = true;
  view.refresh();
  EXPECT_EQ(drawings().size(), 4U);
}

TEST_F(PanelViewTest, FontsTellWhatMatters) {
  ASSERT_TRUE(widgets.press("Show code"));
  host.now.accessibilityGranted = false;
  view.refresh();
  EXPECT_EQ(label("Orvel")->font().weight(), QFont::DemiBold);
  EXPECT_EQ(label("Accessibility is off")->font().weight(), QFont::DemiBold);
  EXPECT_EQ(label("Connected")->font().weight(), QFont::Medium);
  EXPECT_TRUE(label("192.168.1.23")->font().fixedPitch());
  EXPECT_TRUE(label("ABCD-EFGH-JKLM-NPQR")->font().fixedPitch());
  EXPECT_LT(widgets.button("Quit")->font().pointSizeF(),
            widgets.button("Open Accessibility settings")->font().pointSizeF());
}

TEST_F(PanelViewTest, ThePairingIsCentred) {
  ASSERT_TRUE(widgets.press("Show code"));
  picture();
  for (const char* text : {"Scan this in the app", "192.168.1.23", "ABCD-EFGH-JKLM-NPQR"}) {
    EXPECT_EQ(label(text)->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter) << text;
  }
  const auto codes = view.findChildren<QWidget*>();
  const auto code = std::ranges::find_if(codes, [](auto* widget) { return dynamic_cast<QRView*>(widget) != nullptr; });
  ASSERT_NE(code, codes.end());
  EXPECT_NEAR((*code)->mapTo(&view, (*code)->rect().center()).x(), view.width() / 2, 1);
}

TEST_F(PanelViewTest, TheCodeIsOnWhiteAlsoInTheDark) {
  appearance.dark = true;
  view.restyle();
  ASSERT_TRUE(widgets.press("Show code"));
  const QImage shown = picture();
  // The ground of the code is where its left margin is.
  const auto codes = view.findChildren<QWidget*>();
  const auto code = std::ranges::find_if(codes, [](auto* widget) { return dynamic_cast<QRView*>(widget) != nullptr; });
  ASSERT_NE(code, codes.end());
  EXPECT_EQ(shown.pixelColor((*code)->mapTo(&view, QPoint(4, (*code)->height() / 2))), QColor(Qt::white));
  EXPECT_LT(shown.pixelColor((*code)->mapTo(&view, QPoint(0, 0))).lightness(), 80) << "its corners are round";
}

TEST_F(PanelViewTest, ReturnPressesTheButtonThatTheKeyboardIsOn) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QCoreApplication::sendEvent(widgets.button("Restart"), &press);
  EXPECT_THAT(host.asked, ElementsAre("restart"));
}

TEST_F(PanelViewTest, TheSwitchTakesClicksOnItsTextToo) {
  picture();
  auto* toggle = widgets.button("Start at login");
  const QPointF text(4, toggle->height() / 2.0);
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
    QMouseEvent event(type, text, toggle->mapToGlobal(text), Qt::LeftButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(toggle, &event);
  }
  EXPECT_TRUE(list.isEntered);
}

TEST_F(PanelViewTest, ANameIsCutOffWithAnEllipsisAndWholeInItsTip) {
  host.now.clients = {std::string(60, 'i') + "<img src='x'>" + std::string(60, 'W')};
  view.refresh();
  picture();
  const auto* name = label(QString::fromStdString(host.now.clients.front()));
  ASSERT_NE(name, nullptr);
  EXPECT_THAT(name->toolTip().toStdString(), testing::HasSubstr("&lt;img src='x'&gt;"));
  // The end of the line has the dots at its foot and nothing above them.
  const QImage drawn = const_cast<QLabel*>(name)->grab().toImage();
  bool isBlankAbove = true;
  for (int x = drawn.width() - 6; x < drawn.width(); ++x) {
    for (int y = 0; y < drawn.height() / 2; ++y) isBlankAbove &= drawn.pixelColor(x, y).lightness() > 150;
  }
  EXPECT_TRUE(isBlankAbove);
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
  const int width = fittedSize().width();
  EXPECT_NEAR(label("Orvel")->font().pointSizeF(), 10, 0.01);
  EXPECT_NEAR(label("Listening on 192.168.1.23:8787")->font().pointSizeF(), 10 * 11.0 / 13, 0.01);
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 20};
  view.restyle();
  EXPECT_NEAR(label("Orvel")->font().pointSizeF(), 20, 0.01);
  EXPECT_NEAR(fittedSize().width(), 2 * width, 2);
}

}  // namespace
}  // namespace orvel
