#include "fakes/FakeLoginItemService.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/FakePanelHost.hpp"
#include "ui/LoginItem.hpp"
#include "ui/PanelModel.hpp"
#include "ui/PanelView.hpp"
#include "ui/PanelWidgets.hpp"
#include "ui/QRMaker.hpp"
#include "ui/Widgets.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
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

  const QLineEdit* field(const QString& name) const {
    for (const auto* field : view.findChildren<QLineEdit*>()) {
      if (field->accessibleName() == name && field->isVisibleTo(&view)) return field;
    }
    return nullptr;
  }

  const QWidget* code() const {
    PanelWidgets::settle();
    return view.findChild<QWidget*>(QRView::name());
  }

  QRect placeOf(const QWidget* widget) const { return {widget->mapTo(&view, QPoint(0, 0)), widget->size()}; }

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
  PanelView view{model, appearance, [this](QWidget*) { ++changes; }};
  PanelWidgets widgets{view};

  void SetUp() override { view.refresh(); }
};

TEST_F(PanelViewTest, ShowsTheTextsInTheirOrder) {
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
                          "Connected", "Anna's iPhone", "Sharing your screen", "Out of order.", "Scan this in the app",
                          "192.168.1.23", "ABCD-EFGH-JKLM-NPQR", "Or type those two into the app by hand."));
}

TEST_F(PanelViewTest, TheEyeFindsTheCodeAboveThePhones) {
  ASSERT_TRUE(widgets.press("Show code"));
  picture();
  int last = 0;
  for (const QWidget* widget : std::vector<const QWidget*>{
           label("Orvel"), code(), label("Scan this in the app"), field("Address"), field("Pairing code"),
           label("Or type those two into the app by hand."), label("Connected"), widgets.button("Start at login")}) {
    ASSERT_NE(widget, nullptr);
    const int top = widget->mapTo(&view, QPoint(0, 0)).y();
    EXPECT_GT(top, last) << widget->accessibleName().toStdString();
    last = top;
  }
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

TEST_F(PanelViewTest, ScreenReadersReadInTheSameOrderWhateverCameLast) {
  host.now.clients = {"Zoe's iPhone"};
  view.refresh();
  host.now.clients = {"Anna's iPhone", "Zoe's iPhone"};
  ASSERT_TRUE(widgets.press("Show code"));
  EXPECT_THAT(widgets.texts(), ElementsAre("Orvel", "2 phones connected", "Connected", "Anna's iPhone", "Zoe's iPhone",
                                           "Scan this in the app", "192.168.1.23", "ABCD-EFGH-JKLM-NPQR",
                                           "Or type those two into the app by hand."));
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

TEST_F(PanelViewTest, TabGoesFromTheLinkToWhatItHasOpened) {
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
    } else if (qobject_cast<const QLineEdit*>(control) != nullptr && control->isVisibleTo(&view)) {
      order.push_back(control->accessibleName().toStdString());
    }
    control = control->nextInFocusChain();
  } while (control != first);
  EXPECT_THAT(order, ElementsAre("Open Accessibility settings", "Hide code", "Address", "Pairing code",
                                 "Start at login", "Restart", "New code", "Quit"));
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
  const QImage shown = picture();
  const QRgb ground = shown.pixel(1, 1);
  int dividers = 0;
  for (int y = 0; y < shown.height(); ++y) {
    const QRgb colour = shown.pixel(0, y);
    bool isDivider = colour != ground;
    for (int x = 0; x < shown.width(); ++x) isDivider &= shown.pixel(x, y) == colour;
    dividers += isDivider ? 1 : 0;
  }
  EXPECT_EQ(dividers, 5);
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
  const double point = label("Orvel")->font().pointSizeF() / 13;
  EXPECT_NEAR(label("Connected")->font().pointSizeF(), 11 * point, 0.01);
  for (const char* name : {"Address", "Pairing code"}) {
    EXPECT_TRUE(field(name)->font().fixedPitch());
    EXPECT_NEAR(field(name)->font().pointSizeF(), 12 * point, 0.01);
  }
  EXPECT_LT(widgets.button("Quit")->font().pointSizeF(),
            widgets.button("Open Accessibility settings")->font().pointSizeF());
}

TEST_F(PanelViewTest, ThePairingIsCentred) {
  ASSERT_TRUE(widgets.press("Show code"));
  picture();
  EXPECT_EQ(label("Scan this in the app")->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
  for (const QWidget* widget : std::vector<const QWidget*>{code(), field("Address"), field("Pairing code")}) {
    ASSERT_NE(widget, nullptr);
    EXPECT_NEAR(placeOf(widget).center().x(), view.width() / 2, 1);
  }
  EXPECT_EQ(field("Address")->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
}

TEST_F(PanelViewTest, AddressAndCodeAreTogetherInABox) {
  ASSERT_TRUE(widgets.press("Show code"));
  const QImage shown = picture();
  const QRect address = placeOf(field("Address"));
  const QRect pairingCode = placeOf(field("Pairing code"));
  const QRect box = placeOf(field("Address")->parentWidget());
  EXPECT_TRUE(box.contains(address.united(pairingCode)));
  EXPECT_EQ(address.bottom() + 1, pairingCode.top());
  EXPECT_FALSE(box.intersects(placeOf(label("Scan this in the app"))));
  EXPECT_FALSE(box.intersects(placeOf(label("Or type those two into the app by hand."))));
  EXPECT_NE(shown.pixel(box.center().x(), box.top()), shown.pixel(1, 1));
  EXPECT_NE(shown.pixel(box.left() + 3, box.center().y()), shown.pixel(1, 1));
}

TEST_F(PanelViewTest, TheCodeIsOnWhiteAlsoInTheDark) {
  appearance.dark = true;
  view.restyle();
  ASSERT_TRUE(widgets.press("Show code"));
  const QImage shown = picture();
  // The ground of the code is where its left margin is.
  ASSERT_NE(code(), nullptr);
  EXPECT_EQ(shown.pixelColor(code()->mapTo(&view, QPoint(4, code()->height() / 2))), QColor(Qt::white));
  EXPECT_LT(shown.pixelColor(code()->mapTo(&view, QPoint(0, 0))).lightness(), 80) << "its corners are round";
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

TEST_F(PanelViewTest, SmallFontsDoNotCutTheCode) {
  ASSERT_TRUE(widgets.press("Show code"));
  for (const double size : {4.0, 6.0, 7.0, 9.0, 13.0, 28.0}) {
    appearance.chosenFont = DesktopFont{"DejaVu Sans", size};
    view.restyle();
    view.fit(screenWidth);
    view.grab();
    ASSERT_NE(code(), nullptr);
    EXPECT_TRUE(view.rect().contains(placeOf(code()))) << size;
    EXPECT_GE(code()->width(), 168);
    const int width = view.width();
    ASSERT_TRUE(widgets.press("Hide code"));
    EXPECT_EQ(fittedSize().width(), width) << "it does not jump";
    ASSERT_TRUE(widgets.press("Show code"));
  }
}

/// Of the brightness of two colours, as the guidelines for the accessibility of web content define it.
double contrast(const QColor& one, const QColor& other) {
  const auto luminance = [](const QColor& colour) {
    const auto linear = [](double part) {
      return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
  };
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

struct ContrastTest : PanelViewTest, testing::WithParamInterface<bool> {
  void SetUp() override {
    appearance.dark = GetParam();
    appearance.chosenFont = DesktopFont{"DejaVu Sans", 9.75};
    host.now.accessibilityGranted = false;
    view.restyle();
  }
};

TEST_P(ContrastTest, OutlinesOfButtonsStandOutFromBothSides) {
  const QImage shown = picture();
  for (const char* text : {"Open Accessibility settings", "Restart", "New code", "Quit"}) {
    const QRect place = placeOf(widgets.button(text));
    const QColor outline = shown.pixelColor(place.left(), place.center().y());
    EXPECT_GE(contrast(outline, shown.pixelColor(place.left() - 2, place.center().y())), 3) << text;
    EXPECT_GE(contrast(outline, shown.pixelColor(place.left() + 3, place.center().y())), 3) << text;
  }
}

TEST_P(ContrastTest, TheSwitchStandsOutOnAndOff) {
  for (const bool isOn : {false, true}) {
    list.isEntered = isOn;
    view.refresh();
    const QImage shown = picture();
    const QRect place = placeOf(widgets.button("Start at login"));
    // As high as the text, and 1.75 times as wide.
    const int height = place.height() - 4;
    const int right = place.right() - 2 - height / 2;
    const int left = place.right() - 2 - height * 7 / 4 + height / 2;
    const int middle = place.center().y();
    const QColor track = shown.pixelColor(isOn ? left : right, middle);
    const QColor knob = shown.pixelColor(isOn ? right : left, middle);
    EXPECT_GE(contrast(track, shown.pixelColor(2, middle)), 3) << isOn;
    EXPECT_GE(contrast(track, knob), 3) << isOn;
  }
}

TEST_P(ContrastTest, TheWarningStandsOutInOrange) {
  const QImage shown = picture();
  const QImage triangle = shown.copy(placeOf(drawings().at(1)));
  ASSERT_EQ(triangle.size(), QSize(14, 14));
  const QColor colour = triangle.pixelColor(4, 11);
  EXPECT_GE(contrast(colour, triangle.pixelColor(0, 0)), 3);
  EXPECT_NEAR(colour.hue(), 32, 12);
}

TEST_P(ContrastTest, SharingAndErrorsAreRed) {
  host.now.accessibilityGranted = true;
  host.now.mirroring = true;
  host.now.lastError = "Out of order.";
  view.refresh();
  const auto isRed = [](const QColor& colour) {
    return colour.saturation() > 120 && (colour.hue() < 15 || colour.hue() > 345);
  };
  const QImage shown = picture();
  EXPECT_TRUE(isRed(shown.pixelColor(placeOf(drawings().at(1)).topLeft() + QPoint(7, 7))));
  const QImage error = shown.copy(placeOf(label("Out of order.")));
  const QColor ground = error.pixelColor(error.width() - 1, 0);
  QColor strongest = ground;
  for (int y = 0; y < error.height(); ++y) {
    for (int x = 0; x < error.width(); ++x) {
      const QColor colour = error.pixelColor(x, y);
      if (contrast(colour, ground) > contrast(strongest, ground)) strongest = colour;
    }
  }
  EXPECT_TRUE(isRed(strongest)) << strongest.name().toStdString();
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, ContrastTest, testing::Bool(),
                         [](const auto& given) { return given.param ? "Dark" : "Light"; });

TEST_F(PanelViewTest, LinkSwitchAndTextsEndAtOneEdge) {
  appearance.chosenFont = DesktopFont{"DejaVu Sans", 9.75};
  host.now.clients = {std::string(100, 'W')};
  view.restyle();
  const QImage shown = picture();
  const auto lastDrawn = [&](const QRect& place) {
    for (int x = shown.width() - 1; x > 0; --x) {
      for (int y = place.top(); y <= place.bottom(); ++y) {
        if (contrast(shown.pixelColor(x, y), shown.pixelColor(1, 1)) > 1.5) return x;
      }
    }
    return 0;
  };
  const int edge = placeOf(label(QString::fromStdString(host.now.clients.front()))).right();
  EXPECT_EQ(edge, view.width() - 16 - 1);
  EXPECT_NEAR(lastDrawn(placeOf(widgets.button("Start at login"))), edge, 1);
  EXPECT_NEAR(lastDrawn(placeOf(widgets.button("Show code"))), edge, 2);
}

std::string copied() {
  const std::string text = QGuiApplication::clipboard()->text().toStdString();
  QGuiApplication::clipboard()->clear();
  return text;
}

TEST_F(PanelViewTest, AddressAndCodeAreCopiedByTheKeyboard) {
  ASSERT_TRUE(widgets.press("Show code"));
  view.show();
  view.activateWindow();
  PanelWidgets::settle();
  for (const auto& [name, text] :
       {std::pair("Address", "192.168.1.23"), std::pair("Pairing code", "ABCD-EFGH-JKLM-NPQR")}) {
    auto* edit = const_cast<QLineEdit*>(field(name));
    ASSERT_NE(edit, nullptr);
    edit->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(edit->selectedText().toStdString(), text) << "which also shows where the keyboard is";
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
    QCoreApplication::sendEvent(edit, &copy);
    EXPECT_EQ(copied(), text);
    QKeyEvent other(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x");
    QCoreApplication::sendEvent(edit, &other);
    EXPECT_EQ(edit->text().toStdString(), text);
  }
}

TEST_F(PanelViewTest, AddressAndCodeAreCopiedByTheMouse) {
  ASSERT_TRUE(widgets.press("Show code"));
  view.show();
  picture();
  auto* edit = const_cast<QLineEdit*>(field("Pairing code"));
  const auto mouse = [edit](QEvent::Type type, int x) {
    const QPointF place(x, edit->height() / 2.0);
    QMouseEvent event(type, place, edit->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(edit, &event);
  };
  mouse(QEvent::MouseButtonPress, 1);
  mouse(QEvent::MouseMove, edit->width() - 1);
  mouse(QEvent::MouseButtonRelease, edit->width() - 1);
  EXPECT_EQ(edit->selectedText(), "ABCD-EFGH-JKLM-NPQR");
  edit->deselect();
  QContextMenuEvent menuKey(QContextMenuEvent::Mouse, QPoint(5, 5), edit->mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(edit, &menuKey);
  const auto* menu = edit->findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  const auto actions = menu->actions();
  const auto copy = std::ranges::find_if(actions, [](auto* action) { return action->text().startsWith("&Copy"); });
  ASSERT_NE(copy, actions.end());
  EXPECT_TRUE((*copy)->isEnabled());
  (*copy)->trigger();
  EXPECT_EQ(copied(), "ABCD-EFGH-JKLM-NPQR");
}

#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0)
/// Newer toolkits announce without a widget.
TEST_F(PanelViewTest, EachOfSeveralAnnouncementsStaysUntilItIsRead) {
  view.show();
  host.now.clients = {"A"};
  host.now.mirroring = true;
  view.refresh();
  host.now.clients = {"A", "B"};
  view.refresh();
  std::vector<std::string> said;
  for (auto* widget : view.findChildren<QWidget*>()) {
    const auto* known = QAccessible::queryAccessibleInterface(widget);
    if (known->role() != QAccessible::Notification || !widget->isVisible()) continue;
    said.push_back(known->text(QAccessible::Name).toStdString());
  }
  EXPECT_THAT(said, testing::UnorderedElementsAre("Connected: A", "Sharing your screen", "Connected: B"));
}
#endif

TEST_F(PanelViewTest, ScreenReadersKnowWhatEachThingIs) {
  host.now.clients = {"<b>Anna's</b> iPhone"};
  ASSERT_TRUE(widgets.press("Show code"));
  const auto known = [](const QWidget* widget) {
    return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
  };
  const auto* name = known(label("<b>Anna's</b> iPhone"));
  EXPECT_EQ(name->text(QAccessible::Name), "<b>Anna's</b> iPhone");
  EXPECT_EQ(name->text(QAccessible::Description), "Connected phone");
  EXPECT_EQ(known(code())->role(), QAccessible::Graphic);
  EXPECT_EQ(known(code())->text(QAccessible::Name), "QR code to scan in the app");
  const auto* address = known(field("Address"));
  EXPECT_EQ(address->text(QAccessible::Name), "Address");
  EXPECT_EQ(address->text(QAccessible::Value), "192.168.1.23");
  EXPECT_TRUE(address->state().readOnly);
  auto* link = known(widgets.button("Hide code"));
  EXPECT_EQ(link->role(), QAccessible::Button);
  EXPECT_EQ(link->text(QAccessible::Name), "Hide code");
  EXPECT_TRUE(link->state().expandable && link->state().expanded && !link->state().collapsed);
  link->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  const auto shut = known(widgets.button("Show code"))->state();
  EXPECT_TRUE(shut.expandable && shut.collapsed && !shut.expanded);
}

}  // namespace
}  // namespace orvel
