#include "platform/macos/SystemPreferences.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* key = "orvel.test";

// They are those of this program and not of Orvel, which has a bundle.
struct SystemPreferencesTest : testing::Test {
  ~SystemPreferencesTest() override { SystemPreferences().remove(key); }
};

TEST_F(SystemPreferencesTest, AnotherOneFindsTheString) {
  SystemPreferences().setString(key, "Año 日本");
  EXPECT_EQ(SystemPreferences().string(key), "Año 日本");
}

TEST_F(SystemPreferencesTest, AnotherOneFindsTheStrings) {
  SystemPreferences().setStrings(key, {"one", "two"});
  EXPECT_THAT(SystemPreferences().strings(key), ElementsAre("one", "two"));
}

TEST_F(SystemPreferencesTest, WhatWasRemovedIsMissing) {
  SystemPreferences preferences;
  preferences.setString(key, "text");
  preferences.remove(key);
  EXPECT_EQ(preferences.string(key), std::nullopt);
  EXPECT_THAT(preferences.strings(key), IsEmpty());
}

}  // namespace
}  // namespace orvel
