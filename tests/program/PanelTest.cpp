#include "desktop/SettingsDaemon.hpp"
#include "desktop/StatusNotifierStandIn.hpp"
#include "program/PanelFixture.hpp"

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace orvel {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::MatchesRegex;

struct PanelTest : PanelFixture {
  void SetUp() override {
    startTray({.kind = TrayHost::Kind::tint2, .edge = TrayHost::Edge::top});
    startHost();
  }

  void open() {
    ASSERT_TRUE(tray->clickIcon());
    ASSERT_TRUE(waitUntilOpen());
  }

  /// The code, as somebody with a phone gets it from the panel alone.
  std::string codeFromPanel() {
    open();
    EXPECT_TRUE(press("Show code"));
    return scannedCode();
  }

  std::filesystem::path autostartEntry() const { return desktop.home() / ".config/autostart/app.orvel.Orvel.desktop"; }
};

TEST_F(PanelTest, IsClosedAtFirstAndNoWindowIsThere) {
  ASSERT_TRUE(tray->waitForIcon());
  EXPECT_THAT(view.windowTitles(), testing::Not(Contains("Orvel")));
}

TEST_F(PanelTest, NoListOfProgramsShowsIt) {
  open();
  ASSERT_TRUE(eventually([&] { return windowManager.windowsOf("orvel").size() == 1; }));
  EXPECT_FALSE(windowManager.isInTaskbar(windowManager.windowsOf("orvel").front()));
  auto phone = connectPaired(host->code(), "Anna's iPhone");
  ASSERT_FALSE(phone.send({{"t", "getApps"}}));
  const auto apps = phone.receive("apps", phoneTimeout);
  ASSERT_TRUE(apps);
  EXPECT_THAT(boost::json::serialize(*apps), testing::Not(HasSubstr("orvel")));
}

TEST_F(PanelTest, APhoneIsPairedByLookingAtThePanelAlone) {
  open();
  EXPECT_THAT(panel->names("label"),
              testing::ElementsAre("Orvel", MatchesRegex("Listening on .*:8787"), "Connected", "No phones right now"));
  ASSERT_TRUE(press("Show code"));
  const auto payload = scannedPayload();
  EXPECT_EQ(payload.at("v"), 1);
  const std::string address(payload.at("host").as_string());
  EXPECT_TRUE(shows(address.empty() ? "not on a network" : address));
  EXPECT_EQ(payload.at("port"), 8787);
  EXPECT_EQ(payload.at("token").as_string(), host->code());
  EXPECT_EQ(payload.size(), 5U);
  auto phone = connectPaired(std::string(payload.at("token").as_string()), "Anna's iPhone");
  EXPECT_TRUE(shows("1 phone connected"));
  EXPECT_TRUE(shows("Anna's iPhone"));
  photograph("panel-paired");
}

TEST_F(PanelTest, TheIconShowsWhetherPhonesAreConnected) {
  const auto picture = [this] { return view.picture().pixels; };
  ASSERT_TRUE(tray->waitForIcon());
  const auto alone = picture();
  {
    auto phone = connectPaired(host->code(), "Anna's iPhone");
    EXPECT_TRUE(eventually([&] { return picture() != alone; }));
  }
  EXPECT_TRUE(eventually([&] { return picture() == alone; }));
}

TEST_F(PanelTest, ANewCodeDisconnectsThePhoneAndChangesTheQRCode) {
  const std::string before = codeFromPanel();
  auto phone = connectPaired(before, "Anna's iPhone");
  ASSERT_TRUE(shows("1 phone connected"));
  // Somebody who has hidden the code gets to see that there is another.
  ASSERT_TRUE(press("Hide code"));
  ASSERT_TRUE(shows("Show code"));
  ASSERT_TRUE(press("New code"));
  EXPECT_TRUE(isDisconnected(phone));
  EXPECT_TRUE(shows("No phones right now"));
  EXPECT_TRUE(shows("Hide code"));
  EXPECT_TRUE(eventually([&] { return scannedCode() != before; }));
  EXPECT_NO_THROW(connectPaired(scannedCode(), "Anna's iPhone"));
  EXPECT_THROW(connectPaired(before, "Anna's iPhone"), std::runtime_error);
}

TEST_F(PanelTest, RestartDisconnectsThePhoneWhichMayComeBack) {
  const std::string code = codeFromPanel();
  auto phone = connectPaired(code, "Anna's iPhone");
  ASSERT_TRUE(shows("1 phone connected"));
  ASSERT_TRUE(press("Restart"));
  EXPECT_TRUE(isDisconnected(phone));
  EXPECT_TRUE(showsThatItListens());
  auto again = connectPaired(code, "Anna's iPhone");
  EXPECT_TRUE(shows("1 phone connected"));
}

TEST_F(PanelTest, QuitEndsTheProgramAndTheConnections) {
  auto phone = connectPaired(host->code(), "Anna's iPhone");
  open();
  ASSERT_TRUE(press("Quit"));
  EXPECT_TRUE(isDisconnected(phone));
  EXPECT_EQ(host->process().waitForExit(), 0);
  EXPECT_TRUE(tray->waitForNoIcon());
}

TEST_F(PanelTest, ASecondClickOnTheIconClosesIt) {
  open();
  // A click that comes sooner would be the second half of a double one.
  std::this_thread::sleep_for(Milliseconds(600));
  ASSERT_TRUE(tray->clickIcon());
  EXPECT_TRUE(waitUntilClosed());
}

TEST_F(PanelTest, AClickElsewhereClosesIt) {
  open();
  X11Witness other(desktop.display());
  EXPECT_TRUE(waitUntilClosed());
}

/// Neither takes the keyboard from the panel.
TEST_F(PanelTest, AClickOnTheBarOrOnTheBareDesktopClosesIt) {
  for (const auto& [x, y] : {std::pair(700, 16), std::pair(900, 600)}) {
    open();
    ASSERT_TRUE(eventually([&] { return windowManager.activeWindow() != 0; }));
    auto phone = connectPaired(host->code(), "Pointer");
    ASSERT_FALSE(phone.sendFrame(phone::moveAbsoluteFrame(x / 1280.0, y / 800.0)));
    ASSERT_FALSE(phone.sendFrame(phone::clickFrame(phone::MouseButton::left, 1)));
    EXPECT_TRUE(waitUntilClosed()) << x << ' ' << y;
    ASSERT_FALSE(phone.close(phoneTimeout));
    std::this_thread::sleep_for(Milliseconds(600));  // as two clicks on the icon, not one double click
  }
}

TEST_F(PanelTest, TheSwitchChangesWhatStartsAtLogin) {
  open();
  EXPECT_FALSE(panel->waitFor("check box", "Start at login").isChecked);
  ASSERT_TRUE(panel->press("check box", "Start at login"));
  EXPECT_TRUE(eventually([&] { return std::filesystem::exists(autostartEntry()); }));
  EXPECT_TRUE(panel->waitFor("check box", "Start at login").isChecked);
  std::ifstream file(autostartEntry());
  const std::string entry(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(entry, HasSubstr("Exec=\"" ORVEL_PROGRAM "\" --background\n"));
  std::ofstream(autostartEntry(), std::ios::app) << "Hidden=true\n";
  EXPECT_TRUE(eventually([&] { return !panel->waitFor("check box", "Start at login").isChecked; }));
}

TEST_F(PanelTest, AnotherStartOpensThePanelOfTheOneThatRuns) {
  ASSERT_TRUE(tray->waitForIcon());
  EXPECT_EQ(startAgain(), 0) << output;
  EXPECT_TRUE(waitUntilOpen());
}

TEST_F(PanelTest, ShowOpensThePanelOfTheOneThatRuns) {
  ASSERT_TRUE(tray->waitForIcon());
  EXPECT_EQ(startAgain({"--show"}), 0) << output;
  EXPECT_TRUE(waitUntilOpen());
}

TEST_F(PanelTest, AnotherStartAtLoginLeavesItClosed) {
  ASSERT_TRUE(tray->waitForIcon());
  EXPECT_EQ(startAgain({"--background"}), 0) << output;
  EXPECT_EQ(startAgain({"--show"}), 0) << output;
  EXPECT_TRUE(waitUntilOpen());
}

TEST_F(PanelTest, TheKeyboardReachesEverythingAndEscapeClosesIt) {
  open();
  auto phone = connectPaired(host->code(), "Keyboard");
  const auto pressKey = [&](std::uint16_t code) {
    for (const bool down : {true, false}) ASSERT_FALSE(phone.sendFrame(phone::keyFrame(code, down, 0)));
  };
  constexpr std::uint16_t tab = 48;
  constexpr std::uint16_t space = 49;
  constexpr std::uint16_t escape = 53;
  for (const char* control : {"Show code", "Start at login", "Restart", "New code", "Quit", "Show code"}) {
    pressKey(tab);
    EXPECT_TRUE(eventually([&] {
      const auto focused = panel->focused();
      return focused && focused->name == control;
    })) << control;
  }
  pressKey(space);
  EXPECT_TRUE(shows("Hide code"));
  EXPECT_EQ(panel->waitFor("push button", "Hide code").isFocused, true);
  for (const char* field : {"Address", "Pairing code"}) {
    pressKey(tab);
    EXPECT_TRUE(eventually([&] { return panel->waitFor("text", field).isFocused; })) << field;
  }
  pressKey(escape);
  EXPECT_TRUE(waitUntilClosed());
}

TEST_F(PanelTest, ScreenReadersKnowWhatEachThingIs) {
  open();
  auto phone = connectPaired(host->code(), "Anna's iPhone");
  EXPECT_EQ(panel->waitFor("label", "Anna's iPhone").description, "Connected phone");
  const auto closed = panel->waitFor("push button", "Show code");
  EXPECT_TRUE(closed.isExpandable && !closed.isExpanded);
  ASSERT_TRUE(press("Show code"));
  const auto opened = panel->waitFor("push button", "Hide code");
  EXPECT_TRUE(opened.isExpandable && opened.isExpanded);
  EXPECT_TRUE(panel->waitFor([](const auto& nodes) {
    // Whatever the toolkit calls a picture.
    return std::ranges::any_of(nodes, [](const auto& node) {
      return node.name == "QR code to scan in the app" && (node.role == "graphic" || node.role == "image");
    });
  }));
  std::string code = panel->waitFor("text", "Pairing code").text;
  std::erase(code, '-');
  EXPECT_EQ(code, host->code());
  EXPECT_FALSE(panel->waitFor("text", "Address").text.empty());
  const auto nodes = panel->showing();
  EXPECT_TRUE(std::ranges::none_of(nodes, [](const auto& node) { return node.role == "frame"; }));
  // What the link opens comes after it.
  std::vector<std::string> order;
  for (const auto& name : panel->names()) {
    if (name == "Hide code" || name == "Anna's iPhone" || name == "Pairing code" || name == "Start at login") {
      order.push_back(name);
    }
  }
  EXPECT_THAT(order, testing::ElementsAre("Hide code", "Anna's iPhone", "Pairing code", "Start at login"));
}

TEST_F(PanelTest, ScreenReadersSayWhatHappens) {
  open();
  panel->listen();
  auto phone = connectPaired(host->code(), "Anna's iPhone");
  EXPECT_TRUE(panel->waitForAnnouncement("Connected: Anna's iPhone"));
  ASSERT_FALSE(phone.send({{"t", "mirrorStart"}}));
  EXPECT_TRUE(panel->waitForAnnouncement("Sharing your screen"));
  ASSERT_TRUE(press("New code"));
  EXPECT_TRUE(panel->waitForAnnouncement("There is a new code. Every phone has to pair again."));
}

TEST_F(PanelTest, FollowsTheDesktopIntoTheDark) {
  open();
  const auto lightness = [this] {
    const Rect place = panel->waitFor("dialog", "Orvel").place;
    return view.picture().at(static_cast<int>(place.minX()) + 4, static_cast<int>(place.minY()) + 4) & 0xff;
  };
  EXPECT_TRUE(eventually([&] { return lightness() > 200; }));
  const double width = panel->waitFor("dialog", "Orvel").place.size.width;
  const SettingsDaemon settings(desktop.home(), bus.environment(),
                                "Net/ThemeName \"Adwaita-dark\"\nGtk/FontName \"DejaVu Sans 16\"\n");
  EXPECT_TRUE(eventually([&] { return lightness() < 80; }));
  EXPECT_TRUE(eventually([&] { return panel->waitFor("dialog", "Orvel").place.size.width > width * 1.3; }));
  EXPECT_TRUE(shows("Orvel"));
  photograph("panel-dark");
}

struct ScaleTest : PanelFixture, testing::WithParamInterface<int> {};

TEST_P(ScaleTest, TheCodeIsSharpAndReadableAtEveryScaleInEveryFont) {
  const auto resources = desktop.home() / "resources";
  std::ofstream(resources) << "Xft.dpi: " << 96 * GetParam() / 100 << '\n';
  ASSERT_EQ(desktop.run({"xrdb", "-merge", resources.string()}), 0);
  startTray({.kind = TrayHost::Kind::tint2, .edge = TrayHost::Edge::bottom});
  startHost();
  ASSERT_TRUE(tray->clickIcon());
  ASSERT_TRUE(waitUntilOpen());
  ASSERT_TRUE(press("Show code"));
  EXPECT_EQ(scannedCode(), host->code());
  photograph("panel-scale" + std::to_string(GetParam()));
  const auto fontOf = [](int points) { return "Gtk/FontName \"DejaVu Sans " + std::to_string(points) + "\"\n"; };
  const auto titleHeight = [this] { return panel->waitFor("label", "Orvel").place.size.height; };
  double height = titleHeight();
  // One for all fonts: between two of them the panel would go back to its first font, and be taken for changed.
  SettingsDaemon settings(desktop.home(), bus.environment(), fontOf(20));
  ASSERT_TRUE(eventually([&] { return titleHeight() != height; }));
  for (const int points : {6, 7, 28}) {
    height = titleHeight();
    settings.write(fontOf(points));
    EXPECT_TRUE(eventually([&] {
      settings.reload();
      return titleHeight() != height;
    })) << points;
    EXPECT_EQ(scannedCode(), host->code()) << points;
    photograph("panel-scale" + std::to_string(GetParam()) + "-font" + std::to_string(points));
  }
}

INSTANTIATE_TEST_SUITE_P(Scales, ScaleTest, testing::Values(100, 125, 150, 200));

struct TrayTest : PanelFixture, testing::WithParamInterface<TrayHost::Look> {};

TEST_P(TrayTest, TheIconOpensThePanelInsideTheScreenAndBesideTheBar) {
  startTray(GetParam());
  startHost();
  ASSERT_TRUE(tray->clickIcon());
  ASSERT_TRUE(waitUntilOpen());
  ASSERT_TRUE(press("Show code"));
  ASSERT_EQ(scannedCode(), host->code());
  const Rect frame = panel->waitFor("dialog", "Orvel").place;
  EXPECT_GE(frame.minX(), 0);
  EXPECT_GE(frame.minY(), 0);
  EXPECT_LE(frame.maxX(), VirtualDesktop::width);
  EXPECT_LE(frame.maxY(), VirtualDesktop::height);
  const Rect bar = tray->place();
  const bool overlaps =
      frame.minX() < bar.maxX() && bar.minX() < frame.maxX() && frame.minY() < bar.maxY() && bar.minY() < frame.maxY();
  EXPECT_FALSE(overlaps) << frame.minX() << ' ' << frame.minY();
  photograph("panel-" + nameOf(GetParam()));
}

TEST_P(TrayTest, TheIconComesBackWithTheTray) {
  startTray(GetParam());
  startHost();
  ASSERT_TRUE(tray->waitForIcon());
  tray->stop();
  tray->start();
  ASSERT_TRUE(tray->clickIcon());
  EXPECT_TRUE(waitUntilOpen());
}

std::vector<TrayHost::Look> everyLook() {
  std::vector<TrayHost::Look> looks;
  for (const auto kind : {TrayHost::Kind::tint2, TrayHost::Kind::lxqt, TrayHost::Kind::xfce}) {
    for (const auto edge : {TrayHost::Edge::top, TrayHost::Edge::bottom, TrayHost::Edge::left, TrayHost::Edge::right}) {
      looks.push_back({.kind = kind, .edge = edge});
    }
  }
  return looks;
}

INSTANTIATE_TEST_SUITE_P(Trays, TrayTest, testing::ValuesIn(everyLook()),
                         [](const auto& given) { return nameOf(given.param); });

using NoTrayTest = PanelFixture;

TEST_F(NoTrayTest, TheFirstStartShowsThePanelAsANormalWindow) {
  startHost();
  ASSERT_TRUE(waitUntilOpen());
  EXPECT_TRUE(eventually([&] { return windowManager.windowsOf("orvel").size() == 1; }));
  EXPECT_TRUE(windowManager.isInTaskbar(windowManager.windowsOf("orvel").front()));
  photograph("panel-window");
}

TEST_F(NoTrayTest, AtLoginNoWindowComes) {
  host.emplace(desktop, bus.environment());
  ASSERT_TRUE(host->waitUntilListening());
  EXPECT_THAT(view.windowTitles(), testing::Not(Contains("Orvel")));
  EXPECT_EQ(startAgain({"--show"}), 0) << output;
  EXPECT_TRUE(waitUntilOpen());
}

TEST_F(NoTrayTest, AnotherStartBringsTheWindowBack) {
  startHost();
  ASSERT_TRUE(waitUntilOpen());
  ASSERT_TRUE(eventually([&] { return windowManager.windowsOf("orvel").size() == 1; }));
  windowManager.close(windowManager.windowsOf("orvel").front());
  ASSERT_TRUE(waitUntilClosed());
  EXPECT_EQ(host->process().waitForExit(Milliseconds(100)), std::nullopt);
  EXPECT_EQ(startAgain(), 0) << output;
  EXPECT_TRUE(waitUntilOpen());
}

TEST_F(NoTrayTest, ShowSaysWhenNoneRuns) {
  EXPECT_EQ(startAgain({"--show"}), 1);
  EXPECT_THAT(output, HasSubstr("no Orvel runs here"));
}

TEST_F(NoTrayTest, ATakenPortIsSaidAndRestartTakesItOnceItIsFree) {
  std::optional<HostProcess> other;
  VirtualDesktop otherDesktop;
  other.emplace(otherDesktop);
  ASSERT_TRUE(other->waitUntilListening());
  host.emplace(desktop, bus.environment(), std::vector<std::string>{});
  ASSERT_TRUE(waitUntilOpen());
  EXPECT_TRUE(shows("Server stopped"));
  EXPECT_TRUE(shows("Port 8787 is taken. Quit whatever is using it, then hit Restart."));
  photograph("panel-port-taken");
  other.reset();
  ASSERT_TRUE(press("Restart"));
  EXPECT_TRUE(showsThatItListens());
  EXPECT_FALSE(panel->find("label", "Port 8787 is taken. Quit whatever is using it, then hit Restart."));
}

TEST_F(NoTrayTest, AMessageBusThatHangsKeepsNobodyFromThePanel) {
  bus.signal(SIGSTOP);
  host.emplace(desktop, bus.environment(), std::vector<std::string>{});
  EXPECT_TRUE(host->waitUntilListening()) << host->process().output();
  EXPECT_TRUE(eventually([&] { return windowManager.windowsOf("orvel").size() == 1; }));
  bus.signal(SIGCONT);
}

/// The toolkit asks several questions, and waits for each answer.
struct HangingTrayTest : PanelFixture, testing::WithParamInterface<int> {};

TEST_P(HangingTrayTest, DoesNotHoldUpTheEnd) {
  const StatusNotifierStandIn watcher(bus, "(<true>,)", GetParam());
  host.emplace(desktop, bus.environment());
  ASSERT_TRUE(watcher.waitForQuestions(GetParam() + 1));
  // It may hang before it could say that it listens.
  std::optional<phone::PhoneClient> phone;
  ASSERT_TRUE(eventually([&] {
    auto connected = phone::PhoneClient::connect("127.0.0.1", HostProcess::port, phoneTimeout);
    if (connected) phone.emplace(std::move(*connected));
    return phone.has_value();
  }));
  host->process().signal(SIGTERM);
  EXPECT_TRUE(isDisconnected(*phone));
  EXPECT_EQ(host->process().waitForExit(), 0) << host->process().output();
}

INSTANTIATE_TEST_SUITE_P(AfterSoManyAnswers, HangingTrayTest, testing::Values(0, 1));

/// On a server without the extension that input is posted by.
struct NoPermissionTest : testing::Test {
  NoPermissionTest() {
    if (!bus.switchOnAccessibility()) throw std::runtime_error("no accessibility on the bus");
  }

  VirtualDesktop desktop{{"-extension", "XTEST"}};
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
  DesktopView view{desktop.display()};
};

TEST_F(NoPermissionTest, ThePanelExplainsWhatIsMissingWithoutAButtonThatDoesNothing) {
  HostProcess host(desktop, bus.environment(), {});
  ASSERT_TRUE(host.waitUntilListening());
  const AccessibleProgram panel(bus, host.process().pid());
  EXPECT_TRUE(panel.waitFor("label", "Waiting for permission").isShowing);
  EXPECT_THAT(panel.names("label"),
              testing::ElementsAre(
                  "Orvel", "Waiting for permission", "The X server takes no input",
                  "The X server does not let Orvel move the pointer: switch its XTEST extension on in the server's "
                  "configuration, then log in again.",
                  "Connected", "No phones right now"));
  EXPECT_THAT(panel.names("push button"), testing::ElementsAre("Show code", "Restart", "New code", "Quit"));
  EXPECT_TRUE(view.photograph(ORVEL_SCREENSHOTS "/panel-permission.png"));
}

}  // namespace
}  // namespace orvel
