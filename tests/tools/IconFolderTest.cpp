#include "desktop/TemporaryFolder.hpp"
#include "tools/IconFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace orvel::phone {
namespace {

using testing::HasSubstr;

TEST(IconFolder, IdsOfApplicationsAreSafeFileNames) {
  for (const char* id : {"org.gnome.TextEditor", "xterm", "kde4-kate", "My App_2", "日本語"}) {
    EXPECT_TRUE(isSafeFileName(id)) << id;
  }
  EXPECT_TRUE(isSafeFileName(std::string(200, 'a')));
}

TEST(IconFolder, NoIdLeadsOutOfTheFolder) {
  for (const char* id : {"", ".", "..", "../a", "a/../../b", "/etc/passwd", "a/b", "a\\b", ".hidden", "a..b"}) {
    EXPECT_FALSE(isSafeFileName(id)) << id;
  }
  EXPECT_FALSE(isSafeFileName("a\nb"));
  EXPECT_FALSE(isSafeFileName("a\x7f"));
  EXPECT_FALSE(isSafeFileName(std::string("a\0b", 3)));
  EXPECT_FALSE(isSafeFileName(std::string(201, 'a')));
}

TEST(IconFolder, ReadsAPNGInBase64) {
  EXPECT_EQ(pngIn("iVBORw0KGgo="), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(pngIn("iVBORw0KGgphYmM="), "\x89PNG\r\n\x1a\nabc");
}

TEST(IconFolder, TakesNothingElseForAPicture) {
  for (const char* text :
       {"", "x", "iVBORw0KGgo", "iVBORw0KGgo=!", "iVBO\nRw0KGgo=", "iVBORw0K", "YWJjZGVmZ2hp", "####", "<svg/>"}) {
    EXPECT_FALSE(pngIn(text)) << text;
  }
}

TEST(IconFolder, IsMadeAndTakesFiles) {
  const TemporaryFolder home;
  const IconFolder folder(home.path() / "new" / "icons");
  EXPECT_FALSE(folder.prepare());
  EXPECT_FALSE(folder.prepare()) << "it may be there already";
  EXPECT_FALSE(folder.write("org.example.Editor", "longer than the next"));
  EXPECT_FALSE(folder.write("org.example.Editor", std::string("a\0b", 3)));
  std::ifstream file(home.path() / "new" / "icons" / "org.example.Editor.png", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), std::string("a\0b", 3));
}

TEST(IconFolder, SaysWhatCannotBeWritten) {
  const TemporaryFolder home;
  std::ofstream(home.path() / "file") << "in the way";
  const auto noFolder = IconFolder(home.path() / "file").prepare();
  ASSERT_TRUE(noFolder);
  EXPECT_EQ(noFolder->kind, Error::Kind::local);
  EXPECT_THAT(noFolder->text, HasSubstr((home.path() / "file").string()));
  const auto noFile = IconFolder(home.path() / "absent").write("a", "png");
  ASSERT_TRUE(noFile);
  EXPECT_EQ(noFile->kind, Error::Kind::local);
  EXPECT_THAT(noFile->text, HasSubstr("absent/a.png: No such file"));
}

TEST(IconFolder, NoticesThatTheDiskIsFull) {
  const TemporaryFolder home;
  const IconFolder folder(home.path());
  EXPECT_FALSE(folder.write("a", "old"));
  std::filesystem::create_symlink("/dev/full", home.path() / "a.png.part");
  const auto failure = folder.write("a", std::string(100000, 'x'));
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->text, HasSubstr("a.png: No space left"));
  std::ifstream file(home.path() / "a.png");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "old");
  EXPECT_FALSE(std::filesystem::is_symlink(home.path() / "a.png.part"));
}

}  // namespace
}  // namespace orvel::phone
