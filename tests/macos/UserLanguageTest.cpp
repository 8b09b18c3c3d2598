#include "MacTest.hpp"
#include "catalog/NameOrder.hpp"
#include "frameworks/Languages.hpp"
#include "platform/Platform.hpp"
#include "platform/macos/UserLanguage.hpp"

#include <gmock/gmock.h>
#include <unicode/locid.h>

#include <string>

namespace orvel {
namespace {

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
  UserLanguage::apply();
  const NameOrder order = NameOrder::ofUser();
  EXPECT_LT(order.key("Zebra"), order.key("Ärta")) << "A letter of its own in Swedish, the last but one.";
  EXPECT_LT(order.key("ant"), order.key("Zebra"));
}

TEST_F(UserLanguageTest, ALanguageMayHaveAScriptAndARegion) {
  fake::preferredLanguages() = {"zh-Hant-TW"};
  UserLanguage::apply();
  EXPECT_EQ(language(), "zh_Hant_TW");
}

TEST_F(UserLanguageTest, WithoutOneNothingChanges) {
  UserLanguage::apply();
  EXPECT_EQ(language(), "en_US_POSIX");
  fake::preferredLanguages() = {"no language at all"};
  UserLanguage::apply();
  EXPECT_EQ(language(), "en_US_POSIX");
}

TEST_F(UserLanguageTest, ThePlatformAppliesIt) {
  fake::preferredLanguages() = {"de-DE"};
  openPlatform();
  EXPECT_EQ(language(), "de_DE");
}

}  // namespace
}  // namespace orvel
