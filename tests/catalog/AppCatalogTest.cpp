#include "catalog/AppCatalog.hpp"
#include "fakes/FakeComputer.hpp"

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double iconSize = 56;
const FakeComputer::Icon pngBytes = {0x89, 'P', 'N', 'G', 0xff, 0xfe, 0xfb};
constexpr const char* pngText = "iVBOR//++w==";

struct AppCatalogTest : testing::Test {
  static RunningApplication regular(std::uint64_t instance, const std::string& identifier) {
    return {.instance = instance,
            .identifier = identifier,
            .name = "The " + identifier,
            .location = "/running/" + identifier + ".app",
            .isRegular = true};
  }

  static std::pair<std::string, std::optional<ApplicationBundle>> bundle(const std::string& entry,
                                                                         const std::string& identifier,
                                                                         std::optional<std::string> displayName = {},
                                                                         std::optional<std::string> name = {}) {
    return {entry, ApplicationBundle{identifier, std::move(displayName), std::move(name)}};
  }

  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const AppEntry& entry : catalog.snapshot()) all.push_back(entry.name);
    return all;
  }

  FakeComputer computer;
  AppCatalog catalog{computer, computer};
};

TEST_F(AppCatalogTest, AnEmptyComputerHasAnEmptyCatalog) {
  EXPECT_THAT(catalog.snapshot(), IsEmpty());
}

TEST_F(AppCatalogTest, RunningOnesComeFirstInTheDesktopsOrder) {
  computer.running = {regular(1, "zeta"), regular(2, "alpha")};
  computer.folders = {{"/Applications", {bundle("Beta.app", "beta", "Beta")}}};
  EXPECT_THAT(catalog.snapshot(), ElementsAre(AppEntry{"zeta", "The zeta", true}, AppEntry{"alpha", "The alpha", true},
                                              AppEntry{"beta", "Beta", false}));
}

TEST_F(AppCatalogTest, WhatRunsAndIsInstalledIsListedOnceAsRunningWhereItRuns) {
  computer.running = {regular(1, "editor")};
  computer.folders = {{"/Applications", {bundle("Editor.app", "editor", "Editor")}}};
  computer.icons = {{"/running/editor.app", pngBytes}};
  EXPECT_THAT(catalog.snapshot(), ElementsAre(AppEntry{"editor", "The editor", true}));
  EXPECT_EQ(catalog.icon("editor", iconSize), pngText);
}

TEST_F(AppCatalogTest, WhereTheDesktopDoesNotReportWhatRunsAllAreListedAsInstalled) {
  computer.running = {regular(1, "editor")};
  computer.reportsRunning = false;
  computer.folders = {{"/Applications", {bundle("Editor.app", "editor", "Editor"), bundle("Chess.app", "chess")}}};
  EXPECT_THAT(catalog.snapshot(), ElementsAre(AppEntry{"chess", "Chess", false}, AppEntry{"editor", "Editor", false}));
}

TEST_F(AppCatalogTest, WhereTheDesktopDoesNotReportWhatRunsActivatingOpensAndQuittingDoesNothing) {
  computer.running = {regular(1, "editor")};
  computer.reportsRunning = false;
  computer.folders = {{"/Applications", {bundle("Editor.app", "editor", "Editor")}}};
  catalog.snapshot();
  catalog.activate("editor");
  catalog.quit("editor");
  EXPECT_THAT(computer.opened, ElementsAre("/Applications/Editor.app"));
  EXPECT_THAT(computer.activated, IsEmpty());
  EXPECT_THAT(computer.terminated, IsEmpty());
}

TEST_F(AppCatalogTest, OfTwoInstancesTheFirstIsListed) {
  computer.running = {regular(1, "editor"), regular(2, "editor")};
  computer.running[1].name = "Second";
  EXPECT_THAT(names(), ElementsAre("The editor"));
}

TEST_F(AppCatalogTest, ProgramsOfTheBackgroundAreNotListedAsRunning) {
  computer.running = {regular(1, "agent"), regular(2, "nameless")};
  computer.running[0].isRegular = false;
  computer.running[1].identifier.reset();
  computer.folders = {{"/Applications", {bundle("Agent.app", "agent", "Agent")}}};
  EXPECT_THAT(catalog.snapshot(), ElementsAre(AppEntry{"agent", "Agent", false}));
}

TEST_F(AppCatalogTest, ARunningOneWithoutANameIsCalledByItsIdentifier) {
  computer.running = {regular(1, "editor")};
  computer.running[0].name.reset();
  EXPECT_THAT(names(), ElementsAre("editor"));
}

TEST_F(AppCatalogTest, OfTheSameBundleInTwoFoldersTheFirstCounts) {
  computer.folders = {
      {"/Applications", {bundle("Editor.app", "editor", "System's")}},
      {"/home/Applications", {bundle("Editor.app", "editor", "Mine"), bundle("Own.app", "own", "Own")}}};
  computer.icons = {{"/Applications/Editor.app", pngBytes}};
  EXPECT_THAT(names(), ElementsAre("Own", "System's"));
  EXPECT_EQ(catalog.icon("editor", iconSize), pngText);
}

TEST_F(AppCatalogTest, InstalledOnesAreSortedByNameWhateverTheirCapitals) {
  computer.folders = {
      {"/Applications", {bundle("1.app", "1", "beta"), bundle("2.app", "2", "Alpha"), bundle("3.app", "3", "alpha")}}};
  EXPECT_THAT(names(), ElementsAre("Alpha", "alpha", "beta"));
}

TEST_F(AppCatalogTest, TheOrderIsThatOfTheUsersLanguage) {
  computer.folders = {
      {"/Applications", {bundle("1.app", "1", "z"), bundle("2.app", "2", "\u00e4"), bundle("3.app", "3", "b")}}};
  const icu::Locale before = icu::Locale::getDefault();
  UErrorCode error = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("de_DE"), error);
  EXPECT_THAT(names(), ElementsAre("\u00e4", "b", "z"));
  icu::Locale::setDefault(icu::Locale("sv_SE"), error);
  EXPECT_THAT(names(), ElementsAre("b", "z", "\u00e4"));
  icu::Locale::setDefault(before, error);
  EXPECT_TRUE(U_SUCCESS(error));
}

TEST_F(AppCatalogTest, NamesThatAreEqualKeepTheOrderOfTheScan) {
  computer.folders = {{"/one", {bundle("1.app", "1", "same"), bundle("2.app", "2", "SAME")}},
                      {"/two", {bundle("3.app", "3", "Same"), bundle("4.app", "4", "same")}}};
  std::vector<std::string> ids;
  for (const AppEntry& entry : catalog.snapshot()) ids.push_back(entry.id);
  EXPECT_THAT(ids, ElementsAre("1", "2", "3", "4"));
}

TEST_F(AppCatalogTest, ABundleIsCalledByTheFirstNameThatItHas) {
  computer.folders = {
      {"/Applications",
       {bundle("C.app", "c", "Display", "Name"), bundle("B.app", "b", std::nullopt, "Name"), bundle("Tool.app", "a")}}};
  EXPECT_THAT(names(), ElementsAre("Display", "Name", "Tool"));
}

TEST_F(AppCatalogTest, AnEmptyNameIsAName) {
  computer.folders = {{"/Applications", {bundle("Tool.app", "tool", "", "Name")}}};
  EXPECT_THAT(names(), ElementsAre(""));
}

TEST_F(AppCatalogTest, OnlyEntriesWithTheSuffixAreOpened) {
  computer.folders = {{"/Applications",
                       {bundle("Tool.app", "tool"), bundle("Tool.APP", "loud"), bundle("notes.txt", "notes"),
                        bundle(".app", "hidden"), bundle("Tool.app.bak", "old")}}};
  EXPECT_THAT(names(), ElementsAre("", "Tool"));
  EXPECT_THAT(computer.bundlesRead, ElementsAre("/Applications/Tool.app", "/Applications/.app"));
}

TEST_F(AppCatalogTest, WhatIsNoBundleOrCannotBeReadIsSkipped) {
  computer.folders = {{"/secret", {bundle("Tool.app", "secret")}, false},
                      {"/Applications", {{"Broken.app", std::nullopt}, bundle("Tool.app", "tool")}}};
  EXPECT_THAT(names(), ElementsAre("Tool"));
}

TEST_F(AppCatalogTest, ABundleThatIsNotToBeListedHidesThoseOfItsIdentifier) {
  computer.folders = {{"/home", {bundle("Tool.app", "tool", "Mine")}}, {"/Applications", {bundle("Tool.app", "tool")}}};
  computer.folders[0].entries[0].second->isListed = false;
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AppCatalogTest, AnIconIsThePNGInBase64) {
  computer.folders = {{"/Applications", {bundle("Tool.app", "tool")}}};
  computer.icons = {{"/Applications/Tool.app", pngBytes}};
  catalog.snapshot();
  EXPECT_EQ(catalog.icon("tool", iconSize), pngText);
  EXPECT_THAT(computer.iconSizes, ElementsAre(iconSize));
  EXPECT_EQ(computer.locationQueries, 0);
}

TEST_F(AppCatalogTest, AnIconDoesNotNeedASnapshot) {
  computer.known = {{"tool", "/elsewhere/Tool.app"}};
  computer.icons = {{"/elsewhere/Tool.app", pngBytes}};
  EXPECT_EQ(catalog.icon("tool", iconSize), pngText);
}

TEST_F(AppCatalogTest, WhatIsUnknownOrHasNoImageHasNoIcon) {
  computer.known = {{"tool", "/elsewhere/Tool.app"}};
  EXPECT_EQ(catalog.icon("stranger", iconSize), std::nullopt);
  EXPECT_EQ(catalog.icon("tool", iconSize), std::nullopt);
}

TEST_F(AppCatalogTest, ASnapshotForgetsWhereThingsWere) {
  computer.folders = {{"/Applications", {bundle("Tool.app", "tool")}}};
  computer.icons = {{"/Applications/Tool.app", pngBytes}};
  catalog.snapshot();
  computer.folders.clear();
  catalog.snapshot();
  EXPECT_EQ(catalog.icon("tool", iconSize), std::nullopt);
}

/// A computer that changes while it is looked at: it moves its programs as soon as its folders have been named.
class MovingComputer final : public ApplicationBundles {
 public:
  explicit MovingComputer(FakeComputer& computer) : computer_(computer) {}

  std::vector<std::string> searchPaths() const override { return computer_.searchPaths(); }
  std::string_view suffix() const override { return computer_.suffix(); }
  std::optional<std::vector<std::string>> list(const std::string& folder) override {
    auto entries = computer_.list(folder);
    if (const auto meanwhile = std::exchange(meanwhile_, nullptr)) meanwhile();
    return entries;
  }
  std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) override {
    return ApplicationBundle{.identifier = "tool", .displayName = path + entry, .name = {}};
  }

  void onceListed(std::function<void()> meanwhile) { meanwhile_ = std::move(meanwhile); }

 private:
  FakeComputer& computer_;
  std::function<void()> meanwhile_;
};

TEST_F(AppCatalogTest, OfTwoSnapshotsAtOnceTheLastToFinishSaysWhereThingsAre) {
  MovingComputer moving(computer);
  AppCatalog shared(computer, moving);
  computer.folders = {{"/first", {bundle("Tool.app", "tool")}}};
  moving.onceListed([&] {
    // Another phone's, begun later and done earlier.
    computer.folders = {{"/second", {bundle("Tool.app", "tool")}}};
    shared.snapshot();
    shared.activate("tool");
  });
  shared.snapshot();
  shared.activate("tool");
  EXPECT_THAT(computer.opened, ElementsAre("/second/Tool.app", "/first/Tool.app"));
}

TEST_F(AppCatalogTest, ActivatingARunningOneBringsItsFirstInstanceForward) {
  computer.running = {regular(1, "other"), regular(2, "editor"), regular(3, "editor")};
  computer.known = {{"editor", "/Applications/Editor.app"}};
  catalog.activate("editor");
  EXPECT_THAT(computer.activated, ElementsAre(2u));
  EXPECT_THAT(computer.opened, IsEmpty());
}

TEST_F(AppCatalogTest, ActivatingABackgroundProgramThatRunsStartsNoSecond) {
  computer.running = {regular(1, "agent")};
  computer.running[0].isRegular = false;
  computer.known = {{"agent", "/Applications/Agent.app"}};
  catalog.activate("agent");
  EXPECT_THAT(computer.activated, ElementsAre(1u));
  EXPECT_THAT(computer.opened, IsEmpty());
}

TEST_F(AppCatalogTest, ActivatingOneThatDoesNotRunOpensItWhereTheSnapshotFoundIt) {
  computer.folders = {{"/Applications", {bundle("Editor.app", "editor")}}};
  computer.known = {{"editor", "/elsewhere/Editor.app"}};
  catalog.activate("editor");
  catalog.snapshot();
  catalog.activate("editor");
  EXPECT_THAT(computer.opened, ElementsAre("/elsewhere/Editor.app", "/Applications/Editor.app"));
  EXPECT_THAT(computer.activated, IsEmpty());
}

TEST_F(AppCatalogTest, ActivatingWhatNobodyKnowsDoesNothing) {
  catalog.activate("stranger");
  catalog.activate("");
  EXPECT_THAT(computer.opened, IsEmpty());
  EXPECT_THAT(computer.activated, IsEmpty());
}

TEST_F(AppCatalogTest, QuittingAsksEveryInstance) {
  computer.running = {regular(1, "editor"), regular(2, "other"), regular(3, "editor")};
  computer.refusing = {1};
  catalog.quit("editor");
  EXPECT_THAT(computer.terminated, ElementsAre(1u, 3u));
  EXPECT_THAT(names(), ElementsAre("The editor", "The other")) << "one has unsaved work";
}

TEST_F(AppCatalogTest, QuittingWhatDoesNotRunDoesNothing) {
  computer.folders = {{"/Applications", {bundle("Editor.app", "editor")}}};
  catalog.snapshot();
  catalog.quit("editor");
  EXPECT_THAT(computer.terminated, IsEmpty());
}

TEST(AppEntry, HasThreeKeysInThisOrder) {
  const AppEntry entry{"org.example.Editor", "\"Ed\"", true};
  EXPECT_EQ(boost::json::serialize(entry.json()), R"({"id":"org.example.Editor","name":"\"Ed\"","running":true})");
}

}  // namespace
}  // namespace orvel
