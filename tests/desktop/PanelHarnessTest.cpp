#include "desktop/AccessibleProgram.hpp"
#include "desktop/QRReader.hpp"
#include "desktop/TrayHost.hpp"
#include "desktop/WindowManager.hpp"

#include <gtest/gtest.h>
#include <qrencode.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvel {
namespace {

/// A desktop with all but a tray.
struct PanelHarnessTest : testing::Test {
  ChildProcess::Program program() const {
    return {.command = {ORVEL_TEST_TRAY_PROGRAM}, .environment = bus.environment()};
  }

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
};

struct TrayHostTest : PanelHarnessTest, testing::WithParamInterface<TrayHost::Kind> {};

TEST_P(TrayHostTest, ShowsIconsAndHandsOnClicks) {
  TrayHost tray(desktop, bus, {.kind = GetParam()});
  tray.start();
  EXPECT_FALSE(tray.iconPlace());
  ChildProcess icon(program());
  const auto place = tray.waitForIcon();
  ASSERT_TRUE(place);
  EXPECT_LE(place->size.width, TrayHost::thickness);
  EXPECT_LE(place->size.height, TrayHost::thickness);
  EXPECT_TRUE(tray.clickIcon(TrayHost::Button::left));
  EXPECT_TRUE(icon.waitForOutput("activated 3")) << icon.output();
  EXPECT_TRUE(tray.clickIcon(TrayHost::Button::middle));
  EXPECT_TRUE(icon.waitForOutput("activated 4")) << icon.output();
}

TEST_P(TrayHostTest, ShowsNoIconOfAProgramThatHasEnded) {
  TrayHost tray(desktop, bus, {.kind = GetParam(), .isDark = false});
  tray.start();
  {
    const ChildProcess icon(program());
    ASSERT_TRUE(tray.waitForIcon());
  }
  EXPECT_TRUE(tray.waitForNoIcon());
}

TEST_P(TrayHostTest, StandsAtAnyEdgeAndStartsAgain) {
  for (const auto edge : {TrayHost::Edge::top, TrayHost::Edge::left, TrayHost::Edge::right}) {
    TrayHost tray(desktop, bus, {.kind = GetParam(), .edge = edge});
    tray.start();
    const ChildProcess icon(program());
    EXPECT_TRUE(tray.waitForIcon()) << static_cast<int>(edge);
    tray.stop();
    EXPECT_FALSE(tray.iconPlace());
    tray.start();
    EXPECT_TRUE(tray.waitForIcon()) << static_cast<int>(edge);
  }
}

INSTANTIATE_TEST_SUITE_P(Hosts, TrayHostTest,
                         testing::Values(TrayHost::Kind::tint2, TrayHost::Kind::lxqt, TrayHost::Kind::xfce),
                         [](const auto& test) { return std::string(nameOf(test.param)); });

struct AccessibleProgramTest : PanelHarnessTest {
  AccessibleProgramTest() { EXPECT_TRUE(bus.switchOnAccessibility()); }
};

TEST_F(AccessibleProgramTest, TellsWhatIsShown) {
  ChildProcess process(program());
  const AccessibleProgram shown(bus, process.pid());
  const auto button = shown.waitFor("push button", "Press me");
  EXPECT_TRUE(button.isEnabled);
  EXPECT_GT(button.place.size.width, 20);
  EXPECT_TRUE(shown.waitFor([](const auto& nodes) {
    return std::any_of(nodes.begin(), nodes.end(), [](const auto& node) { return node.text == "content"; });
  }));
  EXPECT_TRUE(shown.waitFor([&](const auto&) { return shown.focused() && shown.focused()->name == "Press me"; }));
  EXPECT_EQ(shown.names("label"), std::vector<std::string>{"A label"});
  EXPECT_FALSE(shown.find("label", "Not shown"));
  EXPECT_THROW(AccessibleProgram(bus, desktop.serverPid(), lull), std::runtime_error);
}

TEST_F(AccessibleProgramTest, PressesWhatIsShown) {
  ChildProcess process(program());
  const AccessibleProgram shown(bus, process.pid());
  EXPECT_TRUE(shown.press("push button", "Press me"));
  EXPECT_TRUE(process.waitForOutput("pressed"));
  EXPECT_FALSE(shown.waitFor("check box", "Tick me").isChecked);
  EXPECT_TRUE(shown.press("check box", "Tick me"));
  EXPECT_TRUE(process.waitForOutput("ticked"));
  EXPECT_TRUE(shown.waitFor("check box", "Tick me").isChecked);
  EXPECT_FALSE(shown.press("label", "A label"));
}

/// Writes the QR code of a text to a file, as black and white squares of eight pixels.
void draw(const std::string& text, const std::string& file) {
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M),
                                                             &QRcode_free);
  constexpr int scale = 8;
  constexpr int margin = 4 * scale;
  const int side = code->width * scale + 2 * margin;
  std::ofstream picture(file);
  picture << "P1 " << side << ' ' << side << '\n';
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const int column = (x - margin) / scale;
      const int row = (y - margin) / scale;
      const bool isInside = x >= margin && y >= margin && column < code->width && row < code->width;
      picture << (isInside && (code->data[row * code->width + column] & 1) != 0 ? "1 " : "0 ");
    }
    picture << '\n';
  }
}

TEST(QRReaderTest, ReadsACode) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "code.pbm").string();
  draw("orvel://pair?host=192.0.2.1&code=AB", file);
  EXPECT_EQ(QRReader::textIn(file), "orvel://pair?host=192.0.2.1&code=AB");
}

TEST(QRReaderTest, ReadsNothingWhereNoCodeIs) {
  const VirtualDesktop desktop;
  const std::string file = (desktop.home() / "desktop.png").string();
  ASSERT_TRUE(DesktopView(desktop.display()).photograph(file));
  EXPECT_FALSE(QRReader::textIn(file));
}

}  // namespace
}  // namespace orvel
