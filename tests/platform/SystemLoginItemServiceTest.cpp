#include "desktop/ChildProcess.hpp"
#include "desktop/TemporaryFolder.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/SystemLoginItemService.hpp"
#include "ui/LoginItem.hpp"

#include <gio/gdesktopappinfo.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace orvel {
namespace {

namespace fs = std::filesystem;

constexpr uid_t unprivilegedUser = 65534;
constexpr int noOtherUser = 77;

struct SystemLoginItemServiceTest : testing::Test {
  SystemLoginItemServiceTest() {
    // GIO asks for it once in a process.
    setenv("XDG_CURRENT_DESKTOP", "Orvel-Test", 1);
  }

  fs::path fileIn(const std::string& folder) const {
    return root.path() / folder / "autostart/app.orvel.Orvel.desktop";
  }

  fs::path write(const std::string& folder, const std::string& content) const {
    fs::create_directories(fileIn(folder).parent_path());
    std::ofstream(fileIn(folder), std::ios::binary | std::ios::trunc) << content;
    return fileIn(folder);
  }

  /// An entry that starts `true`, with further lines.
  fs::path writeEntry(const std::string& folder, const std::string& lines = "") const {
    return write(folder, "[Desktop Entry]\nType=Application\nName=Orvel\nExec=true\n" + lines + "\n");
  }

  static std::string contentOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  static mode_t permissions(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }

  SystemLoginItemService serviceFor(const std::string& program) const { return {folders, program}; }

  const TemporaryFolder root;
  const ConfigurationFolders folders{.own = root.path() / "user",
                                     .system = {root.path() / "first", root.path() / "second"}};
  SystemLoginItemService service{folders, "/bin/true"};
};

TEST_F(SystemLoginItemServiceTest, IsOffAtFirst) {
  EXPECT_FALSE(service.isEnabled());
  EXPECT_FALSE(service.remove());
  EXPECT_TRUE(fs::is_empty(root.path())) << "to ask must not make anything";
}

TEST_F(SystemLoginItemServiceTest, EntersAndRemoves) {
  LoginItem item(service);
  EXPECT_TRUE(item.set(true));
  EXPECT_TRUE(item.isEnabled());
  EXPECT_TRUE(SystemLoginItemService(folders, "/bin/true").isEnabled());
  EXPECT_TRUE(item.set(true)) << "again";
  EXPECT_TRUE(item.set(false));
  EXPECT_FALSE(item.isEnabled());
  EXPECT_FALSE(fs::exists(fileIn("user")));
  EXPECT_FALSE(item.set(false)) << "it is not in the list any more";
}

TEST_F(SystemLoginItemServiceTest, WritesAnOrdinaryEntryInAFolderOfTheUsers) {
  const mode_t before = umask(022);
  EXPECT_TRUE(service.enter());
  umask(before);
  EXPECT_EQ(contentOf(fileIn("user")),
            "[Desktop Entry]\nType=Application\nName=Orvel\nIcon=app.orvel.Orvel\nTryExec=/bin/true\n"
            "Exec=\"/bin/true\" --background\n");
  EXPECT_EQ(permissions(fileIn("user")), 0644u);
  EXPECT_EQ(permissions(fileIn("user").parent_path()), 0700u);
  EXPECT_EQ(permissions(root.path() / "user"), 0700u);
  EXPECT_EQ(std::distance(fs::directory_iterator(fileIn("user").parent_path()), fs::directory_iterator()), 1);
}

TEST_F(SystemLoginItemServiceTest, ChangesBehindItsBackAreSeen) {
  EXPECT_TRUE(service.enter());
  writeEntry("user", "Hidden=true");
  EXPECT_FALSE(service.isEnabled());
  writeEntry("user");
  EXPECT_TRUE(service.isEnabled());
  fs::remove(fileIn("user"));
  EXPECT_FALSE(service.isEnabled());
}

TEST_F(SystemLoginItemServiceTest, AProgramThatIsMissingIsNotStarted) {
  EXPECT_FALSE(serviceFor(root.path() / "nowhere").enter());
  EXPECT_FALSE(serviceFor("").enter());
  EXPECT_FALSE(fs::exists(fileIn("user")));
  const auto old = writeEntry("user", "Comment=old");
  EXPECT_FALSE(serviceFor(root.path() / "nowhere").enter());
  EXPECT_NE(contentOf(old).find("Comment=old"), std::string::npos);
}

struct OffCase {
  const char* name;
  const char* lines;
};

struct OffTest : SystemLoginItemServiceTest, testing::WithParamInterface<OffCase> {};

TEST_P(OffTest, AnEntryThatDoesNotStartItHidesThoseOfLessWeight) {
  writeEntry("second");
  ASSERT_TRUE(service.isEnabled());
  writeEntry("first", GetParam().lines);
  EXPECT_FALSE(service.isEnabled());
  writeEntry("first");
  writeEntry("user", GetParam().lines);
  EXPECT_FALSE(service.isEnabled());
  EXPECT_FALSE(service.remove());
  EXPECT_TRUE(service.enter());
  EXPECT_TRUE(service.isEnabled());
}

INSTANTIATE_TEST_SUITE_P(, OffTest,
                         testing::Values(OffCase{"Hidden", "Hidden=true"},
                                         OffCase{"ByGNOME", "X-GNOME-Autostart-enabled=false"},
                                         OffCase{"OnlyShowInOthers", "OnlyShowIn=KDE;GNOME;"},
                                         OffCase{"NotShowInThis", "NotShowIn=KDE;Orvel-Test;"},
                                         OffCase{"TryExecMissing", "TryExec=/nowhere/orvel"},
                                         OffCase{"ExecMissing", "Exec=/nowhere/orvel --background"},
                                         OffCase{"ExecEmpty", "Exec="}, OffCase{"ExecUnbalanced", "Exec=\"true"},
                                         OffCase{"NoProgram", "Type=Link"}, OffCase{"Damaged", "[[["}),
                         [](const auto& chosen) { return std::string(chosen.param.name); });

TEST_F(SystemLoginItemServiceTest, EntriesForThisDesktopStartIt) {
  for (const std::string lines : {"OnlyShowIn=KDE;Orvel-Test;", "NotShowIn=KDE;", "TryExec=true",
                                  "X-GNOME-Autostart-enabled=true", "NoDisplay=true", "Hidden=false"}) {
    writeEntry("user", lines);
    EXPECT_TRUE(service.isEnabled()) << lines;
  }
}

TEST_F(SystemLoginItemServiceTest, AnEntryOfTheSystemIsHiddenToRemoveIt) {
  const auto system = writeEntry("second");
  EXPECT_TRUE(service.remove());
  EXPECT_FALSE(service.isEnabled());
  EXPECT_NE(contentOf(fileIn("user")).find("Hidden=true\n"), std::string::npos);
  EXPECT_TRUE(fs::exists(system));
  EXPECT_TRUE(service.enter());
  EXPECT_TRUE(service.isEnabled());
  EXPECT_TRUE(service.remove()) << "the user's own entry, with one of the system behind it";
  EXPECT_FALSE(service.isEnabled());
}

TEST_F(SystemLoginItemServiceTest, WhatIsNoEntryIsOff) {
  writeEntry("first");
  const std::string contents[] = {"",
                                  "Name=without a group",
                                  std::string(1000, '\0'),
                                  "[Desktop Entry]\nExec=true\n",
                                  "[Desktop Entry]\nType=Application\nName=A\n",
                                  std::string(100'000, '['),
                                  "[Desktop Entry]\nType=Application\nExec=true\xff\n"};
  for (const std::string& content : contents) {
    write("user", content);
    EXPECT_FALSE(service.isEnabled()) << content.substr(0, 60);
  }
}

TEST_F(SystemLoginItemServiceTest, WhatWouldBlockOrBloatIsNotRead) {
  const auto file = writeEntry("user");
  fs::resize_file(file, 100'000'000);
  EXPECT_FALSE(service.isEnabled());
  fs::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  auto done = std::async(std::launch::async, [this] { return service.isEnabled() || !service.enter(); });
  ASSERT_EQ(done.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  EXPECT_FALSE(done.get());
  EXPECT_TRUE(fs::is_regular_file(file)) << "the pipe made room";
  fs::remove(file);
  fs::create_symlink("/dev/zero", file);
  EXPECT_FALSE(service.isEnabled());
}

TEST_F(SystemLoginItemServiceTest, ADanglingLinkIsOffAndMakesRoom) {
  writeEntry("first");
  fs::create_directories(fileIn("user").parent_path());
  fs::create_symlink(root.path() / "nowhere", fileIn("user"));
  EXPECT_FALSE(service.isEnabled());
  EXPECT_FALSE(service.remove());
  EXPECT_TRUE(service.enter());
  EXPECT_FALSE(fs::exists(root.path() / "nowhere"));
}

TEST_F(SystemLoginItemServiceTest, AFolderInPlaceOfTheEntryStays) {
  fs::create_directories(fileIn("user") / "inner");
  EXPECT_FALSE(service.isEnabled());
  EXPECT_FALSE(service.enter());
  EXPECT_TRUE(fs::exists(fileIn("user") / "inner"));
  EXPECT_EQ(std::distance(fs::directory_iterator(fileIn("user").parent_path()), fs::directory_iterator()), 1);
}

TEST_F(SystemLoginItemServiceTest, AFileInPlaceOfTheFolderStays) {
  std::ofstream(root.path() / "user") << "in the way";
  EXPECT_FALSE(service.isEnabled());
  EXPECT_FALSE(service.enter());
  EXPECT_EQ(contentOf(root.path() / "user"), "in the way");
}

TEST_F(SystemLoginItemServiceTest, WhereNothingCanBeWrittenEverythingStaysAsItWas) {
  writeEntry("first");
  const auto file = writeEntry("user", "Comment=old");
  const std::string before = contentOf(file);
  // Root may write everywhere, so an ordinary user has to try.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(file.parent_path(), fs::perms(0555));
    if (getuid() == 0 && setuid(unprivilegedUser) != 0) _exit(noOtherUser);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_FALSE(service.enter());
    EXPECT_FALSE(service.remove());
    EXPECT_TRUE(service.isEnabled());
    EXPECT_EQ(contentOf(file), before);
    _exit(HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  fs::permissions(file.parent_path(), fs::perms(0700));
  if (WEXITSTATUS(status) == noOtherUser) GTEST_SKIP() << "there is no other user here";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

/// A program under an awkward name, started by the entry as a desktop starts it.
struct AwkwardProgramTest : SystemLoginItemServiceTest, testing::WithParamInterface<const char*> {
  AwkwardProgramTest() {
    fs::create_directories(program.parent_path());
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" > '" << record.string() << ".new'\nmv '"
                           << record.string() << ".new' '" << record.string() << "'\n";
    fs::permissions(program, fs::perms(0755));
  }

  bool waitForRecord() const {
    const Deadline deadline(timeout);
    while (!fs::exists(record) && deadline.left() > Milliseconds(0)) std::this_thread::sleep_for(Milliseconds(5));
    return fs::exists(record);
  }

  const fs::path program = root.path() / GetParam() / "orvel";
  const fs::path record = root.path() / "record";
};

TEST_P(AwkwardProgramTest, IsStartedInTheBackground) {
  ASSERT_TRUE(serviceFor(program).enter());
  const GLibPointer<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(fileIn("user").c_str()));
  ASSERT_TRUE(info);
  ASSERT_TRUE(g_app_info_launch(G_APP_INFO(info.get()), nullptr, nullptr, nullptr));
  ASSERT_TRUE(waitForRecord());
  EXPECT_EQ(contentOf(record), program.string() + "\n--background\n");
}

TEST_P(AwkwardProgramTest, HasAValidEntry) {
  ASSERT_TRUE(serviceFor(program).enter());
  ChildProcess check({.command = {"desktop-file-validate", fileIn("user")}});
  EXPECT_EQ(check.waitForExit(), 0) << check.output() << contentOf(fileIn("user"));
}

TEST_P(AwkwardProgramTest, IsMissedWhenItHasGone) {
  ASSERT_TRUE(serviceFor(program).enter());
  fs::remove(program);
  EXPECT_FALSE(serviceFor(program).isEnabled());
}

INSTANTIATE_TEST_SUITE_P(, AwkwardProgramTest,
                         testing::Values("plain", "with spaces", "  leading and trailing ", "double\"quote",
                                         "single'quote", "back\\slash", "two\\\\slashes\\", "dollar$HOME$$",
                                         "back`tick`", "percent%", "%f%U%%", "a=b", "a=b %s \"\\$`", "Küche ñ 日本 🍳",
                                         "semi;colon&amp|pipe<>(x)*?#~[]{}!", "\\s\\n\\t", "new\nline"));

struct OwnProgramTest : testing::Test {
  ~OwnProgramTest() override {
    unsetenv("APPDIR");
    unsetenv("APPIMAGE");
  }

  const std::string self = fs::read_symlink("/proc/self/exe").string();
};

TEST_F(OwnProgramTest, IsTheFileThatRuns) {
  EXPECT_EQ(ownProgram(), self);
}

TEST_F(OwnProgramTest, IsTheWholeAppImage) {
  setenv("APPIMAGE", "/bin/true", 1);
  EXPECT_EQ(ownProgram(), self) << "that of a program that has started this one";
  setenv("APPDIR", "/elsewhere", 1);
  EXPECT_EQ(ownProgram(), self);
  setenv("APPDIR", fs::path(self).parent_path().c_str(), 1);
  EXPECT_EQ(ownProgram(), "/bin/true");
  for (const char* image : {"/nowhere", "true", ""}) {
    setenv("APPIMAGE", image, 1);
    EXPECT_EQ(ownProgram(), self) << image;
  }
}

TEST_F(OwnProgramTest, IsTheNewOneAfterAnUpgrade) {
  const TemporaryFolder folder;
  const fs::path copy = folder.path() / "orvel";
  fs::copy_file(OWN_PROGRAM_PRINTER, copy);
  ChildProcess program({.command = {copy}});
  ASSERT_TRUE(program.waitForOutput("ready\n"));
  fs::remove(copy);
  program.closeInput();
  EXPECT_TRUE(program.waitForOutput("own program: " + copy.string() + "\n")) << program.output();
}

TEST_F(OwnProgramTest, MayHaveANameLikeThatOfAReplacedOne) {
  const TemporaryFolder folder;
  const fs::path copy = folder.path() / "orvel (deleted)";
  fs::copy_file(OWN_PROGRAM_PRINTER, copy);
  ChildProcess program({.command = {copy}});
  program.closeInput();
  EXPECT_TRUE(program.waitForOutput("own program: " + copy.string() + "\n")) << program.output();
}

}  // namespace
}  // namespace orvel
