#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/Disk.hpp"
#include "platform/macos/SystemApplicationBundles.hpp"

#include <gmock/gmock.h>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class ApplicationBundlesTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::disk() = {};
  }

  std::optional<ApplicationBundle> read(const fake::BundleFacts& facts) {
    fake::disk().bundles = {{"/Applications/Editor.app", facts}};
    return bundles_.read("/Applications/Editor.app", "Editor.app");
  }

  SystemApplicationBundles bundles_;
};

TEST_F(ApplicationBundlesTest, LiveInFiveFoldersTheUsersOwnLast) {
  onBareThread([] {
    const SystemApplicationBundles bundles;
    EXPECT_THAT(bundles.searchPaths(), ElementsAre("/Applications", "/Applications/Utilities", "/System/Applications",
                                                   "/System/Applications/Utilities", "/Users/ada/Applications"));
    EXPECT_EQ(bundles.suffix(), ".app");
  });
}

TEST_F(ApplicationBundlesTest, AreListedAsTheDiskHasThem) {
  fake::disk().folders = {{"/Applications", {"Zebra.app", "Büro.app", ".hidden"}}, {"/System/Applications", {}}};
  onBareThread([&] {
    EXPECT_THAT(bundles_.list("/Applications"), Optional(ElementsAre("Zebra.app", "Büro.app", ".hidden")));
    EXPECT_THAT(bundles_.list("/System/Applications"), Optional(IsEmpty()));
    EXPECT_EQ(bundles_.list("/Users/ada/Applications"), std::nullopt);
    EXPECT_EQ(bundles_.list("\xff"), std::nullopt);
  });
}

TEST_F(ApplicationBundlesTest, SayWhatTheyAre) {
  onBareThread([&] {
    const auto bundle = read({{"CFBundleIdentifier", "org.example.editor"},
                              {"CFBundleDisplayName", "The Editor"},
                              {"CFBundleName", "Editor"}});
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->identifier, "org.example.editor");
    EXPECT_EQ(bundle->displayName, "The Editor");
    EXPECT_EQ(bundle->name, "Editor");
    EXPECT_TRUE(bundle->isListed);
  });
}

TEST_F(ApplicationBundlesTest, AnEmptyNameIsANameAndAMissingOneIsNone) {
  const auto bundle = read({{"CFBundleIdentifier", "org.example.editor"}, {"CFBundleDisplayName", ""}});
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->displayName, "");
  EXPECT_EQ(bundle->name, std::nullopt);
}

TEST_F(ApplicationBundlesTest, WhatIsNoTextIsMissing) {
  const auto bundle =
      read({{"CFBundleIdentifier", "org.example.editor"}, {"CFBundleDisplayName", 7}, {"CFBundleName", 8}});
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->displayName, std::nullopt);
  EXPECT_EQ(bundle->name, std::nullopt);
  EXPECT_FALSE(read({{"CFBundleIdentifier", 9}}));
}

TEST_F(ApplicationBundlesTest, WithoutAnIdentifierThereIsNone) {
  EXPECT_FALSE(read({{"CFBundleName", "Editor"}}));
  EXPECT_FALSE(bundles_.read("/Applications/Notes.txt", "Notes.txt"));
  EXPECT_FALSE(bundles_.read("\xff", "\xff"));
}

TEST_F(ApplicationBundlesTest, AreReadAnewEachTime) {
  ASSERT_TRUE(read({{"CFBundleIdentifier", "org.example.editor"}, {"CFBundleName", "Old"}}));
  const auto bundle = read({{"CFBundleIdentifier", "org.example.editor"}, {"CFBundleName", "New"}});
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->name, "New");
}

}  // namespace
}  // namespace orvel
