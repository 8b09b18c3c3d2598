#include "fakes/FakeLoginItemService.hpp"
#include "fakes/FakePanelHost.hpp"
#include "ui/LoginItem.hpp"
#include "ui/PanelModel.hpp"
#include "ui/QRMaker.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

namespace orvel {
namespace {

using Kind = PanelBlock::Kind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

struct PanelModelTest : testing::Test {
  std::vector<Kind> kinds() const {
    std::vector<Kind> kinds;
    for (const PanelBlock& block : model.content()) kinds.push_back(block.kind);
    return kinds;
  }

  /// The rows of the one block of that kind; none when it is not shown.
  std::vector<PanelRow> rows(Kind kind) const {
    const PanelContent content = model.content();
    const auto found = std::ranges::find(content, kind, &PanelBlock::kind);
    return found == content.end() ? std::vector<PanelRow>{} : found->rows;
  }

  static PanelText smallSecondary(const std::string& text) {
    return {.text = text, .font = PanelFont::small, .color = PanelColor::secondary};
  }

  static PanelFields fields(const std::string& address, const std::string& code) {
    return {.fields = {{.name = "Address", .text = address}, {.name = "Pairing code", .text = code}}};
  }

  static PanelText row(const std::string& text, Symbol symbol, PanelColor symbolColor, bool isName = false) {
    return {.text = text, .font = PanelFont::small, .symbol = PanelSymbol{symbol, symbolColor}, .isName = isName};
  }

  FakeLoginItemService list;
  LoginItem loginItem{list};
  FakePanelHost host;
  PanelModel model{host, loginItem};
};

struct StatusCase {
  const char* name;
  bool isRunning;
  bool accessibilityGranted;
  std::vector<std::string> clients;
  std::optional<std::string> address;
  const char* text;
  PanelColor color;
};

struct StatusTest : PanelModelTest, testing::WithParamInterface<StatusCase> {};

TEST_P(StatusTest, SaysWhatMattersMost) {
  const StatusCase& given = GetParam();
  host.now = {.isRunning = given.isRunning,
              .accessibilityGranted = given.accessibilityGranted,
              .clients = given.clients,
              .port = 8787,
              .address = given.address};
  EXPECT_THAT(rows(Kind::header),
              ElementsAre(PanelRow(PanelStatus{.circle = given.color, .title = "Orvel", .text = given.text})));
}

INSTANTIATE_TEST_SUITE_P(
    All, StatusTest,
    testing::Values(
        StatusCase{"Stopped", false, true, {}, "10.0.0.2", "Server stopped", PanelColor::red},
        StatusCase{"StoppedWithoutPermission", false, false, {}, "10.0.0.2", "Server stopped", PanelColor::red},
        StatusCase{"StoppedWithPhones", false, false, {"A", "B"}, {}, "Server stopped", PanelColor::red},
        StatusCase{"StoppedWithPermissionAndPhones", false, true, {"A", "B"}, {}, "Server stopped", PanelColor::red},
        StatusCase{"NoPermission", true, false, {}, "10.0.0.2", "Waiting for permission", PanelColor::orange},
        StatusCase{"NoPermissionTwoPhones", true, false, {"A", "B"}, {}, "Waiting for permission", PanelColor::orange},
        StatusCase{"Listening", true, true, {}, "10.0.0.2", "Listening on 10.0.0.2:8787", PanelColor::secondary},
        StatusCase{"NoNetwork", true, true, {}, {}, "Listening on not on a network:8787", PanelColor::secondary},
        StatusCase{"OnePhone", true, true, {"A"}, {}, "1 phone connected", PanelColor::green},
        StatusCase{"TwoPhones", true, true, {"A", "A"}, {}, "2 phones connected", PanelColor::green},
        StatusCase{"ThreePhones", true, true, {"A", "B", "C"}, {}, "3 phones connected", PanelColor::green}),
    [](const auto& given) { return given.param.name; });

TEST_F(PanelModelTest, ThePortIsTheHosts) {
  host.now.port = 65535;
  EXPECT_EQ(PanelModel::statusText(host.now), "Listening on 192.168.1.23:65535");
}

TEST_F(PanelModelTest, BlocksComeInTheirOrder) {
  EXPECT_THAT(kinds(), ElementsAre(Kind::header, Kind::connections, Kind::options, Kind::footer));
  host.now.accessibilityGranted = false;
  model.perform(PanelAction::toggleCode);
  EXPECT_THAT(kinds(), ElementsAre(Kind::header, Kind::permission, Kind::pairing, Kind::connections, Kind::options,
                                   Kind::footer));
}

TEST_F(PanelModelTest, ThePermissionIsExplainedWhileItIsMissing) {
  host.now.clients = {"A", "B"};
  host.now.accessibilityGranted = false;
  const PanelText heading{.text = "Accessibility is off",
                          .font = PanelFont::heading,
                          .symbol = PanelSymbol{Symbol::exclamationMarkTriangleFill, PanelColor::orange}};
  const PanelText explanation{
      .text = "macOS will not let Orvel move the cursor until you tick it under Privacy & Security → Accessibility.",
      .font = PanelFont::small};
  const PanelButtons button{.buttons = {{"Open Accessibility settings", PanelAction::openAccessibilitySettings}}};
  EXPECT_THAT(rows(Kind::permission), ElementsAre(PanelRow(heading), PanelRow(explanation), PanelRow(button)));
  host.now.accessibilityGranted = true;
  EXPECT_THAT(rows(Kind::permission), testing::IsEmpty());
}

TEST_F(PanelModelTest, WherePermissionCannotBeAskedForThereIsNoButton) {
  host.now.accessibilityGranted = false;
  host.now.permission = {.heading = "No input", .explanation = "Words of the platform."};
  const PanelText heading{.text = "No input",
                          .font = PanelFont::heading,
                          .symbol = PanelSymbol{Symbol::exclamationMarkTriangleFill, PanelColor::orange}};
  const PanelText explanation{.text = "Words of the platform.", .font = PanelFont::small};
  EXPECT_THAT(rows(Kind::permission), ElementsAre(PanelRow(heading), PanelRow(explanation)));
}

TEST_F(PanelModelTest, TheCodeIsHiddenAtFirstAndShownOnDemand) {
  EXPECT_THAT(kinds(), testing::Not(testing::Contains(Kind::pairing)));
  model.perform(PanelAction::toggleCode);
  const auto image = QRMaker::image(host.offered.payload, 190);
  ASSERT_TRUE(image);
  EXPECT_THAT(rows(Kind::pairing), ElementsAre(PanelRow(PanelQR{.image = *image, .shownSide = 168}),
                                               PanelRow(PanelText{.text = "Scan this in the app"}),
                                               PanelRow(fields("192.168.1.23", "ABCD-EFGH-JKLM-NPQR")),
                                               PanelRow(smallSecondary("Or type those two into the app by hand."))));
  model.perform(PanelAction::toggleCode);
  EXPECT_THAT(kinds(), testing::Not(testing::Contains(Kind::pairing)));
}

TEST_F(PanelModelTest, WithoutANetworkThePairingSaysSo) {
  host.now.address.reset();
  model.perform(PanelAction::toggleCode);
  EXPECT_EQ(rows(Kind::pairing).at(2), PanelRow(fields("not on a network", "ABCD-EFGH-JKLM-NPQR")));
}

TEST_F(PanelModelTest, WhatNoQRCodeCanHoldIsLeftOut) {
  model.perform(PanelAction::toggleCode);
  host.offered.payload = "";
  EXPECT_EQ(rows(Kind::pairing).front(), PanelRow(PanelText{.text = "Scan this in the app"}));
  host.offered.payload = std::string(5000, 'x');
  EXPECT_EQ(rows(Kind::pairing).front(), PanelRow(PanelText{.text = "Scan this in the app"}));
}

TEST_F(PanelModelTest, TheCodeIsHiddenAgainInTheNextPanel) {
  model.perform(PanelAction::toggleCode);
  const PanelModel next(host, loginItem);
  EXPECT_EQ(next.content().at(1).kind, Kind::connections);
}

TEST_F(PanelModelTest, TheLinkShowsAndHidesTheCode) {
  EXPECT_EQ(rows(Kind::connections).front(),
            PanelRow(PanelLabel{.text = "Connected", .link = {"Show code", PanelAction::toggleCode}}));
  model.perform(PanelAction::toggleCode);
  EXPECT_EQ(
      rows(Kind::connections).front(),
      PanelRow(PanelLabel{.text = "Connected", .link = {"Hide code", PanelAction::toggleCode}, .isExpanded = true}));
}

TEST_F(PanelModelTest, WithoutPhonesItSaysSo) {
  EXPECT_THAT(rows(Kind::connections), ElementsAre(testing::_, PanelRow(smallSecondary("No phones right now"))));
}

TEST_F(PanelModelTest, PhonesComeInTheHostsOrder) {
  host.now.clients = {"b", "a", "a"};
  EXPECT_THAT(rows(Kind::connections),
              ElementsAre(testing::_, PanelRow(row("b", Symbol::iPhone, PanelColor::primary, true)),
                          PanelRow(row("a", Symbol::iPhone, PanelColor::primary, true)),
                          PanelRow(row("a", Symbol::iPhone, PanelColor::primary, true))));
}

TEST_F(PanelModelTest, SharingAndTheLastErrorComeBelowThePhones) {
  host.now.clients = {"a"};
  host.now.mirroring = true;
  host.now.lastError = "Port 8787 is taken. Quit whatever is using it, then hit Restart.";
  const PanelText error{.text = "Port 8787 is taken. Quit whatever is using it, then hit Restart.",
                        .font = PanelFont::small,
                        .color = PanelColor::red};
  EXPECT_THAT(
      rows(Kind::connections),
      ElementsAre(testing::_, testing::_, PanelRow(row("Sharing your screen", Symbol::recordCircle, PanelColor::red)),
                  PanelRow(error)));
  host.now.clients.clear();
  EXPECT_THAT(
      rows(Kind::connections),
      ElementsAre(testing::_, PanelRow(smallSecondary("No phones right now")),
                  PanelRow(row("Sharing your screen", Symbol::recordCircle, PanelColor::red)), PanelRow(error)));
}

TEST_F(PanelModelTest, TheToggleShowsWhatTheListSays) {
  EXPECT_THAT(rows(Kind::options), ElementsAre(PanelRow(PanelToggle{.text = "Start at login", .isOn = false})));
  list.isEntered = true;  // behind the panel's back
  EXPECT_THAT(rows(Kind::options), ElementsAre(PanelRow(PanelToggle{.text = "Start at login", .isOn = true})));
}

TEST_F(PanelModelTest, SwitchingTheToggleChangesTheList) {
  model.setStartAtLogin(true);
  EXPECT_TRUE(list.isEntered);
  model.setStartAtLogin(false);
  EXPECT_FALSE(list.isEntered);
}

TEST_F(PanelModelTest, ASwitchThatFailsShowsWhatIs) {
  list.fails = true;
  model.setStartAtLogin(true);
  EXPECT_THAT(rows(Kind::options), ElementsAre(PanelRow(PanelToggle{.text = "Start at login", .isOn = false})));
}

TEST_F(PanelModelTest, TheFooterHasThreeSmallButtons) {
  EXPECT_THAT(rows(Kind::footer), ElementsAre(PanelRow(PanelButtons{.buttons = {{"Restart", PanelAction::restart},
                                                                                {"New code", PanelAction::newCode},
                                                                                {"Quit", PanelAction::quit}},
                                                                    .areSmall = true})));
}

TEST_F(PanelModelTest, ActionsGoToTheHost) {
  model.perform(PanelAction::openAccessibilitySettings);
  model.perform(PanelAction::restart);
  model.perform(PanelAction::newCode);
  model.perform(PanelAction::quit);
  EXPECT_THAT(host.asked, ElementsAre("requestPermission", "restart", "renewCode", "quit"));
}

TEST_F(PanelModelTest, ANewCodeChangesTheQRCode) {
  model.perform(PanelAction::toggleCode);
  const auto before = rows(Kind::pairing);
  model.perform(PanelAction::newCode);
  const auto after = rows(Kind::pairing);
  EXPECT_NE(before.at(0), after.at(0));
  EXPECT_NE(before.at(2), after.at(2));
}

/// While it is hidden nothing else would show that all phones have to pair again.
TEST_F(PanelModelTest, ANewCodeIsShownOnceItIsThere) {
  model.takeNews();
  host.renewsAtOnce = false;
  model.perform(PanelAction::newCode);
  EXPECT_THAT(model.takeNews(), IsEmpty());
  EXPECT_THAT(kinds(), Not(Contains(Kind::pairing))) << "that is the old one";
  host.finishRenewal();
  EXPECT_THAT(model.takeNews(), ElementsAre("There is a new code. Every phone has to pair again."));
  EXPECT_EQ(rows(Kind::pairing).at(2), PanelRow(fields("192.168.1.23", "NEWC-ODEN-EWCO-DENE")));
  EXPECT_TRUE(std::get<PanelLabel>(rows(Kind::connections).front()).isExpanded);
  model.perform(PanelAction::toggleCode);
  EXPECT_THAT(model.takeNews(), IsEmpty());
  EXPECT_THAT(kinds(), Not(Contains(Kind::pairing)));
}

TEST_F(PanelModelTest, WhatIsThereWhenThePanelOpensIsNoNews) {
  host.now.clients = {"A"};
  host.now.mirroring = true;
  host.now.lastError = "Out of order.";
  EXPECT_THAT(model.takeNews(), IsEmpty());
  EXPECT_THAT(model.takeNews(), IsEmpty());
}

TEST_F(PanelModelTest, NewPhonesSharingAndErrorsAreNews) {
  host.now.clients = {"A", "B"};
  model.takeNews();
  host.now.clients = {"A", "A", "C"};
  EXPECT_THAT(model.takeNews(), ElementsAre("Connected: A", "Connected: C"));
  host.now.mirroring = true;
  host.now.lastError = "Out of order.";
  EXPECT_THAT(model.takeNews(), ElementsAre("Sharing your screen", "Out of order."));
  EXPECT_THAT(model.takeNews(), IsEmpty());
  host.now = {.isRunning = true, .accessibilityGranted = true, .clients = {"C"}};
  EXPECT_THAT(model.takeNews(), ElementsAre("No longer sharing your screen"));
  host.now.lastError = "Out of order.";
  EXPECT_THAT(model.takeNews(), ElementsAre("Out of order."));
}

TEST_F(PanelModelTest, WhenItAppearsThePermissionIsReadAnew) {
  model.appear();
  EXPECT_THAT(host.asked, ElementsAre("refreshPermission"));
}

}  // namespace
}  // namespace orvel
