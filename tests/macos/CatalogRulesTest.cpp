#include "BareThread.hpp"
#include "MacTest.hpp"
#include "catalog/AppCatalog.hpp"
#include "frameworks/Disk.hpp"
#include "frameworks/IconDrawing.hpp"
#include "frameworks/Workspace.hpp"
#include "platform/macos/SystemApplicationBundles.hpp"
#include "platform/macos/SystemWorkspace.hpp"

#include <gmock/gmock.h>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double iconSize = 56;

/// The catalog's rules over the Mac's programs and bundles.
class CatalogRulesTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::workspace() = {};
    fake::disk() = {};
    fake::iconDrawing() = {};
  }

  static fake::Program program(int process, const std::string& identifier) {
    return {.process = process, .identifier = identifier, .name = identifier, .path = "/running/" + identifier};
  }

  static void install(const std::string& folder, const std::string& entry, const fake::BundleFacts& facts) {
    fake::disk().folders[folder].push_back(entry);
    fake::disk().bundles[folder + "/" + entry] = facts;
  }

  static void install(const std::string& folder, const std::string& name) {
    install(folder, name + ".app", {{"CFBundleIdentifier", "org." + name}, {"CFBundleName", name}});
  }

  std::vector<AppEntry> snapshot() {
    std::vector<AppEntry> entries;
    onBareThread([&] { entries = catalog_.snapshot(); });
    return entries;
  }

  std::vector<std::string>& calls() { return fake::workspace().calls; }

  SystemWorkspace workspace_;
  SystemApplicationBundles bundles_;
  AppCatalog catalog_{workspace_, bundles_};
};

TEST_F(CatalogRulesTest, WhatRunsComesFirstInTheWorkspacesOrderThenWhatIsInstalledByName) {
  fake::workspace().programs = {program(2, "zoo"), program(1, "ant")};
  for (const char* name : {"beta", "Alpha", "alpha"}) install("/Applications", name);
  EXPECT_THAT(snapshot(), ElementsAre(AppEntry{"zoo", "zoo", true}, AppEntry{"ant", "ant", true},
                                      AppEntry{"org.Alpha", "Alpha", false}, AppEntry{"org.alpha", "alpha", false},
                                      AppEntry{"org.beta", "beta", false}));
}

TEST_F(CatalogRulesTest, WhatRunsAndIsInstalledIsListedOnceWhereItRuns) {
  fake::workspace().programs = {program(1, "org.editor"), program(2, "org.editor")};
  install("/Applications", "editor");
  EXPECT_THAT(snapshot(), ElementsAre(AppEntry{"org.editor", "org.editor", true}));
  ASSERT_TRUE(catalog_.icon("org.editor", iconSize));
  EXPECT_EQ(fake::iconDrawing().file, "/running/org.editor");
}

TEST_F(CatalogRulesTest, TheUsersOwnFolderComesLast) {
  install("/Users/ada/Applications", "Tool.app", {{"CFBundleIdentifier", "tool"}, {"CFBundleName", "Mine"}});
  install("/Applications", "Tool.app", {{"CFBundleIdentifier", "tool"}, {"CFBundleName", "Everybody's"}});
  EXPECT_THAT(snapshot(), ElementsAre(AppEntry{"tool", "Everybody's", false}));
}

TEST_F(CatalogRulesTest, NamesFallBack) {
  fake::workspace().programs = {{.process = 1, .identifier = "nameless"}};
  install("/Applications", "Tool.app", {{"CFBundleIdentifier", "tool"}});
  install("/Applications", "Blank.app", {{"CFBundleIdentifier", "blank"}, {"CFBundleDisplayName", ""}});
  install("/Applications", "Odd.app",
          {{"CFBundleIdentifier", "odd"}, {"CFBundleDisplayName", 1}, {"CFBundleName", "O"}});
  EXPECT_THAT(snapshot(), ElementsAre(AppEntry{"nameless", "nameless", true}, AppEntry{"blank", "", false},
                                      AppEntry{"odd", "O", false}, AppEntry{"tool", "Tool", false}));
}

TEST_F(CatalogRulesTest, ABackgroundProgramIsListedOnlyAsInstalled) {
  fake::workspace().programs = {program(1, "org.agent"), program(2, "org.daemon"), {.process = 3, .name = "bare"}};
  fake::workspace().programs[0].policy = 1;
  fake::workspace().programs[1].policy = 2;
  install("/Applications", "agent");
  EXPECT_THAT(snapshot(), ElementsAre(AppEntry{"org.agent", "agent", false}));
}

TEST_F(CatalogRulesTest, WhatIsNoApplicationIsSkipped) {
  install("/Applications", "Damaged.app", {});
  install("/Applications", "Old.APP", {{"CFBundleIdentifier", "old"}});
  fake::disk().folders["/Applications"].push_back("Empty.app");
  EXPECT_THAT(snapshot(), IsEmpty());
}

TEST_F(CatalogRulesTest, AnIconIsThePNGAsText) {
  fake::workspace().locations = {{"org.editor", "/Volumes/Tools/Editor.app"}};
  onBareThread([&] {
    EXPECT_EQ(catalog_.icon("org.editor", iconSize), "iVBORw==");
    EXPECT_EQ(catalog_.icon("org.unknown", iconSize), std::nullopt);
    fake::iconDrawing().failing = {"png"};
    EXPECT_EQ(catalog_.icon("org.editor", iconSize), std::nullopt);
  });
  EXPECT_EQ(fake::iconDrawing().file, "/Volumes/Tools/Editor.app");
}

TEST_F(CatalogRulesTest, WhatRunsIsActivatedAndNotLaunched) {
  fake::workspace().programs = {program(1, "other"), program(2, "editor"), program(3, "editor")};
  onBareThread([&] { catalog_.activate("editor"); });
  EXPECT_THAT(calls(), ElementsAre("activate 2 with 1"));
}

TEST_F(CatalogRulesTest, WhatDoesNotRunIsLaunchedInFront) {
  install("/Applications", "editor");
  snapshot();
  fake::workspace().locations = {{"elsewhere", "/Volumes/Tools/Elsewhere.app"}};
  onBareThread([&] {
    catalog_.activate("org.editor");
    catalog_.activate("elsewhere");
    catalog_.activate("unknown");
  });
  EXPECT_THAT(calls(),
              ElementsAre("open /Applications/editor.app in front", "open /Volumes/Tools/Elsewhere.app in front"));
}

TEST_F(CatalogRulesTest, EveryInstanceIsAskedToQuit) {
  fake::workspace().programs = {program(1, "editor"), program(2, "other"), program(3, "editor")};
  onBareThread([&] {
    catalog_.quit("editor");
    catalog_.quit("unknown");
  });
  EXPECT_THAT(calls(), ElementsAre("terminate 1", "terminate 3"));
}

}  // namespace
}  // namespace orvel
