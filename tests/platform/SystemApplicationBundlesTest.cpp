#include "catalog/AppCatalog.hpp"
#include "fakes/FakeComputer.hpp"
#include "platform/EntryFolders.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/Files.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace orvel {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

struct SystemApplicationBundlesTest : testing::Test {
  SystemApplicationBundlesTest() {
    // GIO asks for it once in a process.
    setenv("XDG_CURRENT_DESKTOP", "Orvel-Test", 1);
    setenv("LANGUAGE", "de", 1);
  }

  /// The installed applications, as "id: name" in the catalog's order.
  Texts installed() {
    FakeComputer nothingRuns;
    AppCatalog catalog(nothingRuns, bundles);
    Texts lines;
    for (const AppEntry& entry : catalog.snapshot()) lines.push_back(entry.id + ": " + entry.name);
    return lines;
  }

  std::optional<std::string> location(const std::string& identifier) {
    const auto found = entries.find(identifier);
    return found ? std::optional(found->path) : std::nullopt;
  }

  EntryFolders folders;
  DesktopEntries entries{folders.dataFolders()};
  SystemApplicationBundles bundles{entries};
};

TEST_F(SystemApplicationBundlesTest, EntriesOfAllFoldersAreListedByName) {
  folders.writeEntry("system", "org.example.Editor.desktop", "Name=Editor");
  folders.writeEntry("local", "zoo.desktop", "Name=Animals");
  folders.writeEntry("user", "beta.desktop", "Name=beta");
  EXPECT_EQ(installed(), (Texts{"zoo: Animals", "beta: beta", "org.example.Editor: Editor"}));
}

TEST_F(SystemApplicationBundlesTest, NamesAreInTheUsersLanguage) {
  folders.writeEntry("user", "editor.desktop", "Name=Editor\nName[de]=Bearbeiter\nName[fr]=Éditeur");
  EXPECT_EQ(installed(), Texts{"editor: Bearbeiter"});
}

TEST_F(SystemApplicationBundlesTest, AnEntryWithoutANameHasThatOfItsFile) {
  folders.writeEntry("user", "tool.desktop", "");
  folders.writeEntry("user", "empty.desktop", "Name=");
  folders.writeEntry("user", "kde4/sub.desktop", "");
  EXPECT_EQ(installed(), (Texts{"empty: ", "kde4-sub: sub", "tool: tool"}));
}

TEST_F(SystemApplicationBundlesTest, TheUsersFolderWinsOverTheSystems) {
  folders.writeEntry("system", "editor.desktop", "Name=Of the system");
  folders.writeEntry("local", "editor.desktop", "Name=Local");
  const auto own = folders.writeEntry("user", "editor.desktop", "Name=My own");
  EXPECT_EQ(installed(), Texts{"editor: My own"});
  EXPECT_EQ(location("editor"), own);
}

TEST_F(SystemApplicationBundlesTest, FoldersBelowArePartOfTheIdentifier) {
  const auto path = folders.writeEntry("system", "kde4/apps/foo-bar.desktop", "Name=Foo");
  EXPECT_EQ(installed(), Texts{"kde4-apps-foo-bar: Foo"});
  EXPECT_EQ(location("kde4-apps-foo-bar"), path);
  folders.writeEntry("user", "kde4/apps/foo-bar.desktop", "Name=Mine");
  EXPECT_EQ(installed(), Texts{"kde4-apps-foo-bar: Mine"});
}

struct HidingCase {
  const char* name;
  const char* lines;
};

struct HidingTest : SystemApplicationBundlesTest, testing::WithParamInterface<HidingCase> {};

TEST_P(HidingTest, AnEntryThatIsNotListedHidesThoseOfItsName) {
  folders.writeEntry("system", "editor.desktop", "Name=Of the system");
  folders.writeEntry("user", "editor.desktop", GetParam().lines);
  EXPECT_EQ(installed(), Texts{});
}

INSTANTIATE_TEST_SUITE_P(, HidingTest,
                         testing::Values(HidingCase{"NoDisplay", "Name=A\nNoDisplay=true"},
                                         HidingCase{"Hidden", "Name=A\nHidden=true"},
                                         HidingCase{"HiddenWithoutMore", "Hidden=true"},
                                         HidingCase{"OnlyShowInOthers", "Name=A\nOnlyShowIn=KDE;GNOME;"},
                                         HidingCase{"NotShowInThis", "Name=A\nNotShowIn=KDE;Orvel-Test;"},
                                         HidingCase{"MissingProgram", "Name=A\nTryExec=orvel-no-such-program"}),
                         [](const auto& chosen) { return std::string(chosen.param.name); });

TEST_F(SystemApplicationBundlesTest, EntriesForThisDesktopAreListed) {
  folders.writeEntry("user", "a.desktop", "Name=A\nOnlyShowIn=KDE;Orvel-Test;");
  folders.writeEntry("user", "b.desktop", "Name=B\nNotShowIn=KDE;");
  folders.writeEntry("user", "c.desktop", "Name=C\nTryExec=true");
  EXPECT_EQ(installed(), (Texts{"a: A", "b: B", "c: C"}));
}

TEST_F(SystemApplicationBundlesTest, HiddenEntriesHaveNoLocationAndUnlistedOnesDo) {
  folders.writeEntry("system", "hidden.desktop", "Name=A");
  folders.writeEntry("user", "hidden.desktop", "Name=A\nHidden=true");
  const auto unlisted = folders.writeEntry("user", "unlisted.desktop", "Name=B\nNoDisplay=true");
  EXPECT_EQ(location("hidden"), std::nullopt);
  EXPECT_EQ(location("unlisted"), unlisted);
  EXPECT_EQ(location("missing"), std::nullopt);
}

TEST_F(SystemApplicationBundlesTest, IdentifiersThatLeadElsewhereAreNotFollowed) {
  folders.writeEntry("user", "inner/good.desktop", "Name=Good");
  folders.write("user", "outside.desktop", "[Desktop Entry]\nType=Application\nExec=true\nName=Out\n");
  for (const std::string& identifier :
       {std::string(), std::string("../outside"), std::string("..-outside"), std::string("inner/good"),
        std::string("inner-good\0x", 12), std::string("\xff"), std::string(100'000, '-')}) {
    EXPECT_EQ(location(identifier), std::nullopt) << identifier.substr(0, 40);
  }
}

TEST_F(SystemApplicationBundlesTest, WhatIsNoEntryIsSkipped) {
  folders.writeEntry("user", "good.desktop", "Name=Good");
  folders.write("user", "applications/broken.desktop", "Name=without a group");
  folders.write("user", "applications/empty.desktop", "");
  folders.write("user", "applications/binary.desktop", std::string(1000, '\0'));
  folders.write("user", "applications/link.desktop", "[Desktop Entry]\nType=Link\nName=Link\nURL=http://example.org\n");
  folders.write("user", "applications/noType.desktop", "[Desktop Entry]\nName=A\nExec=true\n");
  folders.write("user", "applications/notes.txt", "[Desktop Entry]\nType=Application\nName=A\nExec=true\n");
  folders.writeEntry("user", ".desktop", "Name=Nameless");
  folders.writeEntry("user", "latin.desktop", "Name=Caf\xe9");
  folders.writeEntry("user", "caf\xe9.desktop", "Name=A");
  fs::create_directories(folders.applications("user") + "/folder.desktop");
  EXPECT_EQ(installed(), Texts{"good: Good"});
}

TEST_F(SystemApplicationBundlesTest, WhatWouldBlockIsNotOpened) {
  folders.writeEntry("user", "good.desktop", "Name=Good");
  const fs::path folder = folders.applications("user");
  ASSERT_EQ(mkfifo((folder / "pipe.desktop").c_str(), 0600), 0);
  fs::create_symlink(folder / "pipe.desktop", folder / "pipelink.desktop");
  fs::create_symlink("/dev/zero", folder / "endless.desktop");
  fs::create_symlink("/dev/tty", folder / "terminal.desktop");
  const auto huge = folders.writeEntry("user", "huge.desktop", "Name=Huge");
  fs::resize_file(huge, 10'000'000);
  auto done = std::async(std::launch::async, [this] { return installed(); });
  ASSERT_EQ(done.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  EXPECT_EQ(done.get(), Texts{"good: Good"});
  EXPECT_EQ(location("pipe"), std::nullopt);
  EXPECT_EQ(location("endless"), std::nullopt);
}

TEST_F(SystemApplicationBundlesTest, LoopsOfLinksEnd) {
  folders.writeEntry("user", "below/good.desktop", "Name=Good");
  const fs::path folder = folders.applications("user");
  fs::create_directory_symlink(folder, folder / "below/again");
  fs::create_directory_symlink("loop", folder / "loop");
  fs::create_symlink("self.desktop", folder / "self.desktop");
  fs::create_symlink("nowhere.desktop", folder / "dangling.desktop");
  EXPECT_EQ(installed(), Texts{"below-good: Good"});
}

TEST_F(SystemApplicationBundlesTest, DeepFoldersAreLeft) {
  folders.writeEntry("user", "1/2/3/4/seen.desktop", "Name=Seen");
  folders.writeEntry("user", "1/2/3/4/5/unseen.desktop", "Name=Unseen");
  EXPECT_EQ(installed(), Texts{"1-2-3-4-seen: Seen"});
}

TEST_F(SystemApplicationBundlesTest, MissingFoldersAreSaidToBeSo) {
  EXPECT_EQ(bundles.list(folders.applications("user")), std::nullopt);
  folders.write("user", "applications", "a file");
  EXPECT_EQ(bundles.list(folders.applications("user")), std::nullopt);
  EXPECT_EQ(installed(), Texts{});
}

TEST_F(SystemApplicationBundlesTest, ChangesAreSeen) {
  const auto path = folders.writeEntry("user", "a.desktop", "Name=Before");
  EXPECT_EQ(installed(), Texts{"a: Before"});
  folders.writeEntry("user", "a.desktop", "Name=After it");
  folders.writeEntry("user", "b.desktop", "Name=New");
  EXPECT_EQ(installed(), (Texts{"a: After it", "b: New"}));
  fs::remove(path);
  EXPECT_EQ(installed(), Texts{"b: New"});
}

TEST_F(SystemApplicationBundlesTest, AProgramThatComesLaterIsSeenWithoutAChangeOfItsEntry) {
  const std::string program = folders.data("user") + "/late-program";
  folders.writeEntry("user", "late.desktop", "Name=Late\nTryExec=" + program);
  EXPECT_EQ(installed(), Texts{});
  folders.write("user", "late-program", "#!/bin/sh\n");
  ASSERT_EQ(chmod(program.c_str(), 0700), 0);
  EXPECT_EQ(installed(), Texts{"late: Late"});
}

TEST_F(SystemApplicationBundlesTest, ThreadsMayAskAtOnce) {
  for (int i = 0; i < 200; ++i) {
    folders.writeEntry("system", "app" + std::to_string(i) + ".desktop", "Name=App " + std::to_string(i));
  }
  std::vector<std::future<Texts>> askers;
  for (int i = 0; i < 4; ++i) askers.push_back(std::async(std::launch::async, [this] { return installed(); }));
  for (auto& asker : askers) EXPECT_EQ(asker.get().size(), 200u);
}

struct DataFoldersTest : testing::Test {
  void TearDown() override {
    for (const char* name : {"XDG_DATA_HOME", "XDG_DATA_DIRS"}) unsetenv(name);
  }
};

TEST_F(DataFoldersTest, AreThoseOfTheEnvironment) {
  setenv("XDG_DATA_HOME", "/mine", 1);
  setenv("XDG_DATA_DIRS", "/one/:relative::/two:/mine:/one", 1);
  EXPECT_EQ(DataFolders::ofUser().shared, (Texts{"/mine", "/one", "/two"}));
}

TEST_F(DataFoldersTest, HaveTheUsualPlaces) {
  setenv("HOME", "/home/ada", 1);
  unsetenv("XDG_DATA_HOME");
  setenv("XDG_DATA_DIRS", "", 1);
  EXPECT_EQ(DataFolders::ofUser().shared, (Texts{"/home/ada/.local/share", "/usr/local/share", "/usr/share"}));
}

}  // namespace
}  // namespace orvel
