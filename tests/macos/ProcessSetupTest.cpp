#include "MacTest.hpp"
#include "catalog/NameOrder.hpp"
#include "frameworks/Languages.hpp"
#include "platform/Platform.hpp"
#include "platform/macos/ProcessSetup.hpp"

#include <gmock/gmock.h>
#include <unicode/locid.h>

#include <string>

namespace orvel {
namespace {

TEST(OpenFilesTest, AreAsManyAsTheSystemLetsAProgramHave) {
  EXPECT_EQ(ProcessSetup::raised({.rlim_cur = 256, .rlim_max = 1000}), 1000u);
  EXPECT_EQ(ProcessSetup::raised({.rlim_cur = 256, .rlim_max = RLIM_INFINITY}), 10240u);
}

TEST(OpenFilesTest, AreNotFewerThanBefore) {
  EXPECT_EQ(ProcessSetup::raised({.rlim_cur = 20000, .rlim_max = RLIM_INFINITY}), 20000u);
}

TEST(OpenFilesTest, AreAllowedToThisProcess) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit usual{.rlim_cur = 256, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  ProcessSetup::allowManyFiles();
  rlimit after{};
  EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &after), 0);
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(after.rlim_cur, ProcessSetup::raised(usual));
  EXPECT_EQ(after.rlim_max, before.rlim_max);
}

class UserLanguageTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    // As in a program that Finder has started.
    set(icu::Locale("en_US_POSIX"));
  }

  void TearDown() override {
    fake::preferredLanguages().clear();
    set(before_);
    MacTest::TearDown();
  }

  static void set(const icu::Locale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    icu::Locale::setDefault(locale, error);
  }

  static std::string language() { return icu::Locale::getDefault().getName(); }

  const icu::Locale before_;
};

TEST_F(UserLanguageTest, NamesAreSortedAsTheFirstLanguageHasThem) {
  fake::preferredLanguages() = {"sv-SE", "en-SE"};
  ProcessSetup::applyUserLanguage();
  const NameOrder order = NameOrder::ofUser();
  EXPECT_LT(order.key("Zebra"), order.key("Ärta")) << "A letter of its own in Swedish, the last but one.";
  EXPECT_LT(order.key("ant"), order.key("Zebra"));
}

TEST_F(UserLanguageTest, ALanguageMayHaveAScriptAndARegion) {
  fake::preferredLanguages() = {"zh-Hant-TW"};
  ProcessSetup::applyUserLanguage();
  EXPECT_EQ(language(), "zh_Hant_TW");
}

TEST_F(UserLanguageTest, WithoutOneNothingChanges) {
  ProcessSetup::applyUserLanguage();
  EXPECT_EQ(language(), "en_US_POSIX");
  fake::preferredLanguages() = {"no language at all"};
  ProcessSetup::applyUserLanguage();
  EXPECT_EQ(language(), "en_US_POSIX");
}

TEST_F(UserLanguageTest, ThePlatformAppliesIt) {
  fake::preferredLanguages() = {"de-DE"};
  openPlatform();
  EXPECT_EQ(language(), "de_DE");
}

}  // namespace
}  // namespace orvel
