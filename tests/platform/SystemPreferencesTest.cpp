#include "desktop/TemporaryFolder.hpp"
#include "platform/linux/SystemPreferences.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QLockFile>
#include <QString>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace orvel {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr uid_t otherUser = 65534;
constexpr int otherUserIsMissing = 77;

class SystemPreferencesTest : public ::testing::Test {
 protected:
  SystemPreferencesTest() { setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1); }

  fs::path configuration() const { return folder_.path() / "orvel"; }
  fs::path file() const { return configuration() / "orvel.conf"; }

  fs::path listFile() const { return configuration() / "orvel.devices"; }

  void writeFile(const std::string& content) const {
    fs::create_directories(configuration());
    std::ofstream(file(), std::ios::binary | std::ios::trunc) << content;
  }

  std::string fileContent() const {
    std::ifstream stream(file(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// What the file of the list says.
  Texts list() const {
    std::ifstream stream(listFile(), std::ios::binary);
    Texts texts;
    for (std::string line; std::getline(stream, line);) {
      std::string text;
      for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isEscape = line[i] == '\\' && i + 1 < line.size();
        if (isEscape) ++i;
        text += isEscape && line[i] == 'n' ? '\n' : line[i];
      }
      texts.push_back(text);
    }
    return texts;
  }

  static void addAll(SystemPreferences& preferences, const std::string& key, const Texts& texts) {
    for (const std::string& text : texts) preferences.add(key, text);
  }
  static void addAll(const std::string& key, const Texts& texts) {
    SystemPreferences preferences;
    addAll(preferences, key, texts);
  }

  static mode_t permissions(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }

  TemporaryFolder folder_;
};

TEST_F(SystemPreferencesTest, NothingIsStoredAtFirst) {
  const SystemPreferences preferences;
  EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
  EXPECT_FALSE(fs::exists(configuration())) << "reading must not create anything";
}

TEST_F(SystemPreferencesTest, WhatIsStoredOutlivesTheObject) {
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMNPQRS");
  addAll("orvel.devices", {"Ada's iPhone", "Tablet"});
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMNPQRS");
  EXPECT_EQ(list(), (Texts{"Ada's iPhone", "Tablet"}));
  EXPECT_EQ(fileContent(), "[General]\norvel.token=ABCDEFGHJKMNPQRS\n");
}

TEST_F(SystemPreferencesTest, AFileWrittenByHandIsRead) {
  writeFile("; mine\n[General]\norvel.token = ABCDEFGHJKMN\norvel.devices=One, \"Two, too\"\n");
  SystemPreferences preferences;
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  addAll(preferences, "orvel.devices", {"One", "Two, too", "Three"});
  EXPECT_EQ(list(), Texts{"Three"});
}

TEST_F(SystemPreferencesTest, ALockThatIsNeverLetGoHoldsNobodyUp) {
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  {
    QLockFile other(QString::fromStdString(file().string() + ".lock"));
    other.setStaleLockTime(0);
    ASSERT_TRUE(other.lock());
    preferences.setString("orvel.token", "PQRSTUVWXYZ2");
    EXPECT_EQ(preferences.string("orvel.token"), "PQRSTUVWXYZ2") << "answered from memory meanwhile";
    EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  }
  preferences.add("orvel.devices", "One");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "PQRSTUVWXYZ2") << "stored once the lock is free";
}

TEST_F(SystemPreferencesTest, RemovingForgetsOneKey) {
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  preferences.add("orvel.devices", "One");
  preferences.remove("orvel.devices");
  preferences.remove("never.set");
  EXPECT_EQ(list(), Texts{});
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

const Texts awkwardTexts = {"",
                            "plain",
                            "a, b",
                            "a;b",
                            "\"quoted\"",
                            "back\\slash",
                            "\\x41",
                            "100%",
                            "%20",
                            "@",
                            "@@",
                            "@Invalid()",
                            "@String(x)",
                            "@ByteArray(x)",
                            "@Variant(\\0)",
                            " spaces ",
                            "\ttabs\t",
                            "two\nlines\r\n",
                            std::string("zero\0byte", 9),
                            std::string(1, '\0'),
                            "key=value",
                            "[General]",
                            "#comment",
                            "Küche 🍳 日本 e\u0301",
                            "\uFEFFmark",
                            "\uFFFE\uFFFF",
                            "\u2028\u0085",
                            "\x01"
                            "2\x7f",
                            std::string(100000, 'x')};

TEST_F(SystemPreferencesTest, EveryTextComesBackAsItWas) {
  for (const std::string& text : awkwardTexts) {
    SystemPreferences().setString("orvel.token", text);
    EXPECT_EQ(SystemPreferences().string("orvel.token"), text);
  }
}

TEST_F(SystemPreferencesTest, EveryListOfOneComesBackAsItWas) {
  for (const std::string& text : awkwardTexts) {
    SystemPreferences().remove("orvel.devices");
    SystemPreferences().add("orvel.devices", text);
    EXPECT_EQ(list(), Texts{text});
  }
}

TEST_F(SystemPreferencesTest, ListsOfAnyLengthComeBackAsTheyWere) {
  for (const Texts& texts :
       {Texts{}, Texts{"", "\n"}, Texts{"a\\n", "a\n", "\\", "a"}, Texts{"a", "a, b", ""}, awkwardTexts}) {
    SystemPreferences().remove("orvel.devices");
    addAll("orvel.devices", texts);
    EXPECT_EQ(list(), texts);
    addAll("orvel.devices", texts);
    EXPECT_EQ(list(), texts) << "each is there once";
  }
}

TEST_F(SystemPreferencesTest, AListInTheFileOfTextsCountsAndStays) {
  const std::string content = "[General]\norvel.devices=One, Two\norvel.token=ABCDEFGHJKMN\n";
  writeFile(content);
  SystemPreferences preferences;
  addAll(preferences, "orvel.devices", {"Two", "Three", "One"});
  EXPECT_EQ(list(), Texts{"Three"});
  EXPECT_EQ(fileContent(), content) << "what holds the token is not touched for a name";
  preferences.remove("orvel.devices");
  EXPECT_EQ(list(), Texts{});
  EXPECT_EQ(fileContent(), "[General]\norvel.token=ABCDEFGHJKMN\n");
}

TEST_F(SystemPreferencesTest, ATextThatIsInTheListCostsNoWrite) {
  SystemPreferences preferences;
  addAll(preferences, "orvel.devices", {"One", "Two"});
  const auto before = fs::last_write_time(listFile());
  fs::permissions(listFile(), fs::perms(0400));
  addAll(preferences, "orvel.devices", {"One", "Two"});
  EXPECT_EQ(fs::last_write_time(listFile()), before);
  EXPECT_EQ(permissions(listFile()), 0400u);
}

TEST_F(SystemPreferencesTest, ALongListTouchesNoText) {
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  for (int i = 0; i < 1100; ++i) preferences.add("orvel.devices", std::to_string(i) + std::string(1100, 'x'));
  preferences.add("orvel.devices", std::string(std::size_t{8} << 20, 'y'));
  EXPECT_EQ(list().size(), 1101u);
  EXPECT_EQ(fileContent(), "[General]\norvel.token=ABCDEFGHJKMN\n");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  SystemPreferences later;
  later.add("orvel.devices", std::string(std::size_t{8} << 20, 'y'));
  later.add("orvel.devices", "last");
  EXPECT_EQ(list().size(), 1102u);
}

TEST_F(SystemPreferencesTest, AListThatWasCutOffLosesOnlyWhatWasCut) {
  addAll("orvel.devices", {"One", "Two"});
  fs::resize_file(listFile(), fs::file_size(listFile()) - 2);
  SystemPreferences preferences;
  addAll(preferences, "orvel.devices", {"Two", "One"});
  EXPECT_EQ(list(), (Texts{"One", "Tw", "Two"}));
}

TEST_F(SystemPreferencesTest, AnotherProcessesListIsSeen) {
  SystemPreferences preferences;
  preferences.add("orvel.devices", "One");
  std::ofstream(listFile(), std::ios::app) << "Two\n";
  preferences.add("orvel.devices", "Two");
  EXPECT_EQ(list(), (Texts{"One", "Two"}));
}

TEST_F(SystemPreferencesTest, ALargeFileIsStillOurs) {
  std::string large = "[General]\n";
  while (large.size() <= 3 * 1024 * 1024)
    large += "key" + std::to_string(large.size()) + "=" + std::string(1000, 'v') + "\n";
  writeFile(large + "orvel.token=ABCDEFGHJKMN\n");
  SystemPreferences preferences;
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  preferences.setMissing("other", "value");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_EQ(SystemPreferences().string("other"), "value");
}

TEST_F(SystemPreferencesTest, WhatIsMissingInADamagedFileIsNotStoredOverIt) {
  const std::string contents[] = {"[General]\norvel.devices=One, Tw", "no equals sign\n", "[General\nx=y\n",
                                  std::string("\0\0\0\0", 4), "[General]\norvel.devices=\"never closed\n"};
  for (const std::string& content : contents) {
    writeFile(content);
    SystemPreferences preferences;
    EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
    preferences.setMissing("orvel.token", "NPQRSTUVWXYZ");
    EXPECT_EQ(preferences.string("orvel.token"), "NPQRSTUVWXYZ");
    EXPECT_EQ(fileContent(), content);
    writeFile("[General]\norvel.token=ABCDEFGHJKMN\n");
    EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN") << "the stored one is readable again";
  }
}

TEST_F(SystemPreferencesTest, WhatWasReadHoldsWhileTheFileIsDamaged) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMN\n");
  const SystemPreferences preferences;
  ASSERT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  writeFile("[General]\norvel.dev");
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  fs::remove(file());
  fs::create_directories(file());
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN") << "nor does a folder in its place count as no file";
}

TEST_F(SystemPreferencesTest, WhatStandsInForATextThatWasCutShortHolds) {
  writeFile("[General]\norvel.token=ABCDEF");
  SystemPreferences preferences;
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEF");
  preferences.setMissing("orvel.token", "NPQRSTUVWXYZ");
  EXPECT_EQ(preferences.string("orvel.token"), "NPQRSTUVWXYZ");
}

TEST_F(SystemPreferencesTest, ATextThatWasReadHoldsWhenTheFileIsCutWithinIt) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMNPQRS\n");
  const SystemPreferences preferences;
  ASSERT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMNPQRS");
  writeFile("[General]\norvel.token=ABCDEFGHJKMNP");
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMNPQRS");
}

TEST_F(SystemPreferencesTest, ATextThatWasReadHoldsWhenTheFileIsCutToNothing) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMNPQRS\n");
  const SystemPreferences preferences;
  ASSERT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMNPQRS");
  writeFile("");
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMNPQRS");
}

TEST_F(SystemPreferencesTest, WhatWasReadIsStoredAgainWithTheNextChangeOfADamagedFile) {
  for (const std::string damaged : {"", "[General]\norvel.token=ABCDEFGHJKMNP"}) {
    writeFile("[General]\norvel.token=ABCDEFGHJKMNPQRS\n");
    SystemPreferences preferences;
    ASSERT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMNPQRS");
    writeFile(damaged);
    preferences.setString("other", "value");
    EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMNPQRS");
    EXPECT_EQ(SystemPreferences().string("other"), "value");
  }
}

TEST_F(SystemPreferencesTest, TheLastTextCanBeRemoved) {
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  preferences.remove("orvel.token");
  EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
  preferences.setMissing("orvel.token", "NPQRSTUVWXYZ");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "NPQRSTUVWXYZ");
}

TEST_F(SystemPreferencesTest, AFileThatIsEmptyFromTheStartLacksItsTexts) {
  writeFile("");
  SystemPreferences preferences;
  EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
  preferences.setMissing("orvel.token", "NPQRSTUVWXYZ");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "NPQRSTUVWXYZ");
}

TEST_F(SystemPreferencesTest, AFirstReadFindsItsTextWhileAnotherIsBeingStored) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMN\n");
  fs::permissions(file(), fs::perms(0644));
  QLockFile other(QString::fromStdString(file().string() + ".lock"));
  other.setStaleLockTime(0);
  ASSERT_TRUE(other.lock());
  SystemPreferences preferences;
  std::thread writer([&] { preferences.setString("other", "value"); });
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (permissions(file()) != 0600u && std::chrono::steady_clock::now() < limit) std::this_thread::yield();
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN") << "while the writer waits for the lock";
  other.unlock();
  writer.join();
}

TEST_F(SystemPreferencesTest, TwoWhoAddToAListAtOnceLoseNothingAndDoubleNothing) {
  const auto addSome = [](const std::string& own) {
    SystemPreferences preferences;
    for (int i = 0; i < 500; ++i) {
      preferences.add("orvel.devices", own + std::to_string(i));
      preferences.add("orvel.devices", "shared" + std::to_string(i));
    }
  };
  std::thread other([&] { addSome("a"); });
  addSome("b");
  other.join();
  const Texts all = list();
  EXPECT_EQ(all.size(), 1500u);
  EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 1500u);
}

TEST_F(SystemPreferencesTest, AListThatSomebodyElseKeepsLockedIsNotWaitedForForEver) {
  SystemPreferences preferences;
  preferences.add("orvel.devices", "One");
  const int file = open(listFile().c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(file, LOCK_EX), 0);
  preferences.add("orvel.devices", "Two");
  close(file);
  EXPECT_EQ(list(), Texts{"One"});
  preferences.add("orvel.devices", "Two");
  EXPECT_EQ(list(), (Texts{"One", "Two"}));
}

TEST_F(SystemPreferencesTest, WhatIsMissingIsStoredWhereThereIsNoFile) {
  SystemPreferences().setMissing("orvel.token", "ABCDEFGHJKMN");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

TEST_F(SystemPreferencesTest, WhatStoodInForADamagedTextIsStoredWhenTheFileTurnsOutToLackIt) {
  writeFile("damaged");
  SystemPreferences preferences;
  preferences.setMissing("orvel.token", "ABCDEFGHJKMN");
  writeFile("[General]\nother=value\n");
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_EQ(preferences.string("other"), "value");
  preferences.add("orvel.devices", "One");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

TEST_F(SystemPreferencesTest, WhatIsNoTextIsMadeOne) {
  SystemPreferences().setString("orvel.token",
                                "a\xff"
                                "b\xed\xa0\x80");
  const auto stored = SystemPreferences().string("orvel.token");
  ASSERT_TRUE(stored.has_value());
  EXPECT_TRUE(
      stored->starts_with("a\uFFFD"
                          "b\uFFFD"))
      << *stored;
  EXPECT_EQ(stored->find('\xff'), std::string::npos);
  EXPECT_EQ(stored->find("\xed\xa0"), std::string::npos);
  writeFile("[General]\norvel.token=x\xfe\\xd800y\n");
  EXPECT_EQ(SystemPreferences().string("orvel.token").value_or("").find('\xfe'), std::string::npos);
  EXPECT_EQ(SystemPreferences().string("orvel.token").value_or("").find("\xed\xa0"), std::string::npos);
}

TEST_F(SystemPreferencesTest, AListOfSeveralIsNoString) {
  writeFile("[General]\norvel.token=one, two\n");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), std::nullopt);
}

TEST_F(SystemPreferencesTest, TheFileAndItsFolderAreTheUsersAlone) {
  const mode_t before = umask(0);
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
  umask(before);
  EXPECT_EQ(permissions(configuration()), 0700u);
  EXPECT_EQ(permissions(file()), 0600u);
}

TEST_F(SystemPreferencesTest, LaxPermissionsAreTightenedByReadingAndByWriting) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMN\n");
  fs::permissions(configuration(), fs::perms(0755));
  fs::permissions(file(), fs::perms(0644));
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_EQ(permissions(file()), 0600u);
  fs::permissions(file(), fs::perms(0666));
  SystemPreferences().setString("other", "value");
  EXPECT_EQ(permissions(file()), 0600u);
  EXPECT_EQ(permissions(configuration()), 0700u);
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

TEST_F(SystemPreferencesTest, NothingElseIsLeftInTheFolder) {
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
  EXPECT_EQ(std::distance(fs::directory_iterator(configuration()), fs::directory_iterator()), 1);
}

TEST_F(SystemPreferencesTest, MissingParentFoldersAreMade) {
  setenv("XDG_CONFIG_HOME", (folder_.path() / "home/.config").c_str(), 1);
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_EQ(permissions(folder_.path() / "home/.config/orvel/orvel.conf"), 0600u);
}

TEST_F(SystemPreferencesTest, WithoutAConfigurationFolderTheHomeFolderCounts) {
  unsetenv("XDG_CONFIG_HOME");
  const std::string home = getenv("HOME") == nullptr ? "/" : getenv("HOME");
  setenv("HOME", folder_.path().c_str(), 1);
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
  setenv("HOME", home.c_str(), 1);
  EXPECT_TRUE(fs::exists(folder_.path() / ".config/orvel/orvel.conf"));
}

TEST_F(SystemPreferencesTest, AFileThatCannotBeParsedIsReplaced) {
  const std::string contents[] = {"no equals sign",
                                  "[General",
                                  std::string("\0\x01\xff\xfe=\0", 6),
                                  "\xff\xfe\n\n===\n[",
                                  "[General]\norvel.token=\"never closed\n",
                                  std::string(100000, '[')};
  for (const std::string& content : contents) {
    writeFile(content);
    SystemPreferences preferences;
    preferences.string("orvel.token");
    preferences.setString("orvel.token", "ABCDEFGHJKMN");
    EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
    EXPECT_NE(fileContent().find("orvel.token=ABCDEFGHJKMN\n"), std::string::npos);
    EXPECT_EQ(permissions(file()), 0600u);
  }
}

/// Each makes a different obstacle where the file should be.
class SystemPreferencesObstacleTest : public SystemPreferencesTest {
 protected:
  void expectMemory() {
    SystemPreferences preferences;
    EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
    preferences.setString("orvel.token", "ABCDEFGHJKMN");
    EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
    preferences.remove("orvel.token");
    EXPECT_EQ(preferences.string("orvel.token"), std::nullopt);
    preferences.setString("orvel.token", "ABCDEFGHJKMN");
    EXPECT_EQ(SystemPreferences().string("orvel.token"), std::nullopt);
  }
};

TEST_F(SystemPreferencesObstacleTest, AFolderInPlaceOfTheFile) {
  fs::create_directories(file());
  expectMemory();
}

TEST_F(SystemPreferencesObstacleTest, ADanglingLink) {
  fs::create_directories(configuration());
  fs::create_symlink(folder_.path() / "nowhere", file());
  expectMemory();
  EXPECT_FALSE(fs::exists(folder_.path() / "nowhere"));
}

TEST_F(SystemPreferencesObstacleTest, APipe) {
  fs::create_directories(configuration());
  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  expectMemory();
}

TEST_F(SystemPreferencesObstacleTest, AFileInPlaceOfTheFolder) {
  std::ofstream(configuration()) << "in the way";
  expectMemory();
}

TEST_F(SystemPreferencesObstacleTest, AFolderWithoutWritePermission) {
  // Root may write everywhere, so an ordinary user has to try.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    fs::permissions(folder_.path(), fs::perms(0555));
    if (getuid() == 0 && setuid(otherUser) != 0) _exit(otherUserIsMissing);
    expectMemory();
    _exit(HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  fs::permissions(folder_.path(), fs::perms(0700));
  if (WEXITSTATUS(status) == otherUserIsMissing) GTEST_SKIP() << "there is no other user here";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(SystemPreferencesObstacleTest, WhatWasKeptInMemoryIsStoredWithTheNextChange) {
  fs::create_directories(file());
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  fs::remove(file());
  preferences.setString("other", "One");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_EQ(SystemPreferences().string("other"), "One");
}

TEST_F(SystemPreferencesObstacleTest, WhatWasKeptInMemoryIsStoredWithTheNextTextForAListAndNotByReading) {
  fs::create_directories(file());
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  fs::remove(file());
  EXPECT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  EXPECT_FALSE(fs::exists(file())) << "who reads must not wait for a disk";
  preferences.add("orvel.devices", "One");
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

TEST_F(SystemPreferencesObstacleTest, WhatWasKeptInMemoryIsStoredAtTheEnd) {
  fs::create_directories(file());
  {
    SystemPreferences preferences;
    preferences.setString("orvel.token", "ABCDEFGHJKMN");
    fs::remove(file());
  }
  EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
}

TEST_F(SystemPreferencesTest, WhatWasReadHoldsWhileNoFileCanBeOpened) {
  SystemPreferences preferences;
  preferences.setString("orvel.token", "ABCDEFGHJKMN");
  ASSERT_EQ(preferences.string("orvel.token"), "ABCDEFGHJKMN");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{.rlim_cur = 3, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto token = preferences.string("orvel.token");
  preferences.setString("other", "Zoe");
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(token, "ABCDEFGHJKMN");
  EXPECT_EQ(preferences.string("other"), "Zoe");
  preferences.add("orvel.devices", "One");
  EXPECT_EQ(SystemPreferences().string("other"), "Zoe");
}

TEST_F(SystemPreferencesTest, ARelativeConfigurationFolderDoesNotCount) {
  setenv("XDG_CONFIG_HOME", "relative", 1);
  setenv("HOME", folder_.path().c_str(), 1);
  SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
  EXPECT_FALSE(fs::exists("relative"));
  EXPECT_TRUE(fs::exists(folder_.path() / ".config/orvel/orvel.conf"));
}

TEST_F(SystemPreferencesTest, AFileThatCannotBeReadIsReplaced) {
  writeFile("[General]\norvel.token=ROOTSROOTSROOTS\n");
  fs::permissions(file(), fs::perms(0600));
  if (chown(folder_.path().c_str(), otherUser, otherUser) != 0)
    GTEST_SKIP() << "only root can make a file someone else's";
  ASSERT_EQ(chown(configuration().c_str(), otherUser, otherUser), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (setuid(otherUser) != 0) _exit(otherUserIsMissing);
    EXPECT_EQ(SystemPreferences().string("orvel.token"), std::nullopt);
    SystemPreferences().setString("orvel.token", "ABCDEFGHJKMN");
    EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
    _exit(HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(permissions(file()), 0600u);
}

TEST_F(SystemPreferencesTest, AFileThatCanOnlyBeReadKeepsWhatItSaysWhenItIsReplaced) {
  writeFile("[General]\norvel.token=ABCDEFGHJKMN\n");
  fs::permissions(file(), fs::perms(0644));
  if (chown(folder_.path().c_str(), otherUser, otherUser) != 0)
    GTEST_SKIP() << "only root can make a file someone else's";
  ASSERT_EQ(chown(configuration().c_str(), otherUser, otherUser), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (setuid(otherUser) != 0) _exit(otherUserIsMissing);
    SystemPreferences().setString("other", "Zoe");
    EXPECT_EQ(SystemPreferences().string("orvel.token"), "ABCDEFGHJKMN");
    EXPECT_EQ(SystemPreferences().string("other"), "Zoe");
    _exit(HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(permissions(file()), 0600u);
}

pid_t startWriter(const std::string& key, const std::string& count) {
  Texts words = {PREFERENCES_WRITER, key, count};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t process = -1;
  EXPECT_EQ(posix_spawn(&process, PREFERENCES_WRITER, nullptr, nullptr, arguments.data(), environ), 0);
  return process;
}

bool succeeded(pid_t process) {
  int status = -1;
  return waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(SystemPreferencesTest, AnotherProcessesChangeIsSeen) {
  SystemPreferences preferences;
  preferences.setString("orvel.writer", "before");
  ASSERT_TRUE(succeeded(startWriter("orvel.writer", "1")));
  EXPECT_EQ(preferences.string("orvel.writer"), "1");
  fs::remove(file());
  EXPECT_EQ(preferences.string("orvel.writer"), std::nullopt);
}

TEST_F(SystemPreferencesTest, ProcessesThatWriteAtOnceLoseAndBreakNothing) {
  const Texts keys = {"writer.a", "writer.b", "writer.c"};
  std::vector<pid_t> writers;
  for (const std::string& key : keys) writers.push_back(startWriter(key, "40"));
  const SystemPreferences preferences;
  for (int round = 0; round < 200; ++round) {
    const std::string shared = preferences.string("shared").value_or(std::string(200, 'a'));
    EXPECT_EQ(shared.size(), 200u);
    EXPECT_EQ(std::count(shared.begin(), shared.end(), shared.front()), 200);
  }
  for (const pid_t writer : writers) EXPECT_TRUE(succeeded(writer));
  for (const std::string& key : keys) EXPECT_EQ(SystemPreferences().string(key), "40");
  EXPECT_EQ(permissions(file()), 0600u);
}

TEST_F(SystemPreferencesTest, ThreadsMayShareOneObject) {
  SystemPreferences preferences;
  std::vector<std::thread> threads;
  for (const std::string name : {"a", "b", "c"}) {
    threads.emplace_back([&preferences, name] {
      for (int round = 0; round < 20; ++round) {
        preferences.setString("thread." + name, std::to_string(round));
        EXPECT_EQ(preferences.string("thread." + name), std::to_string(round));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string name : {"a", "b", "c"}) EXPECT_EQ(preferences.string("thread." + name), "19");
}

}  // namespace
}  // namespace orvel
