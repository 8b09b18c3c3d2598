#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/Defaults.hpp"
#include "platform/macos/SystemPreferences.hpp"
#include "session/PairingStore.hpp"

#include <gmock/gmock.h>

#include <thread>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Elements = std::vector<fake::DefaultsElement>;

class PreferencesTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::defaults().clear();
  }

  SystemPreferences preferences_;
};

TEST_F(PreferencesTest, KeepsTextsAndLists) {
  onBareThread([&] {
    preferences_.setString("text", "Büro – 日本");
    preferences_.setStrings("list", {"one", "", "zwei"});
  });
  EXPECT_EQ(fake::defaults().at("text"), fake::DefaultsValue("Büro – 日本"));
  EXPECT_EQ(fake::defaults().at("list"), fake::DefaultsValue(Elements{"one", "", "zwei"}));
  onBareThread([&] {
    const SystemPreferences later;
    EXPECT_EQ(later.string("text"), "Büro – 日本");
    EXPECT_THAT(later.strings("list"), ElementsAre("one", "", "zwei"));
  });
}

TEST_F(PreferencesTest, WhatIsMissingIsNothing) {
  EXPECT_EQ(preferences_.string("text"), std::nullopt);
  EXPECT_THAT(preferences_.strings("list"), IsEmpty());
}

TEST_F(PreferencesTest, ARemovedOneIsMissing) {
  preferences_.setString("text", "one");
  onBareThread([&] {
    preferences_.remove("text");
    preferences_.remove("never there");
  });
  EXPECT_THAT(fake::defaults(), IsEmpty());
}

TEST_F(PreferencesTest, AnEmptyListIsStored) {
  preferences_.setStrings("list", {});
  EXPECT_EQ(fake::defaults().at("list"), fake::DefaultsValue(Elements{}));
}

TEST_F(PreferencesTest, AWrongTypeIsMissing) {
  fake::defaults() = {
      {"number", 123456789}, {"text", "text"}, {"list", Elements{"one"}}, {"mixed", Elements{"one", 2}}};
  EXPECT_EQ(preferences_.string("number"), std::nullopt);
  EXPECT_EQ(preferences_.string("list"), std::nullopt);
  EXPECT_THAT(preferences_.strings("number"), IsEmpty());
  EXPECT_THAT(preferences_.strings("text"), IsEmpty());
  EXPECT_THAT(preferences_.strings("mixed"), IsEmpty());
}

TEST_F(PreferencesTest, WhatIsNoTextIsNotStored) {
  preferences_.setStrings("list", {"one", "\xff", "two"});
  EXPECT_THAT(preferences_.strings("list"), ElementsAre("one", "two"));
  preferences_.setString("\xff", "one");
  EXPECT_EQ(preferences_.string("\xff"), std::nullopt);
}

TEST_F(PreferencesTest, HoldThePairing) {
  PairingStore pairing(preferences_);
  const std::string token = pairing.token();
  EXPECT_THAT(token, SizeIs(16));
  EXPECT_EQ(pairing.token(), token);
  EXPECT_EQ(fake::defaults().at("orvel.token"), fake::DefaultsValue(token));
  pairing.remember("Zoe's phone");
  pairing.remember("Ada's phone");
  pairing.remember("Zoe's phone");
  EXPECT_EQ(fake::defaults().at("orvel.devices"), fake::DefaultsValue(Elements{"Zoe's phone", "Ada's phone"}));
  pairing.rotateToken();
  EXPECT_NE(pairing.token(), token);
  EXPECT_FALSE(fake::defaults().contains("orvel.devices"));
}

TEST_F(PreferencesTest, ATokenOfTwelveCharactersIsKeptAndAShorterOneReplaced) {
  PairingStore pairing(preferences_);
  fake::defaults() = {{"orvel.token", "ABCDEFGHJKMN"}};
  EXPECT_EQ(pairing.token(), "ABCDEFGHJKMN");
  fake::defaults() = {{"orvel.token", "ABCDEFGHJKM"}};
  EXPECT_THAT(pairing.token(), SizeIs(16));
}

TEST_F(PreferencesTest, SessionsMayAskAtOnce) {
  PairingStore pairing(preferences_);
  const auto verify = [&pairing] {
    for (int round = 0; round < 50; ++round) {
      const std::string nonce = pairing.randomNonce();
      EXPECT_TRUE(pairing.verify(pairing.expectedProof(nonce), nonce));
    }
  };
  pairing.token();
  std::thread other(verify);
  verify();
  other.join();
}

}  // namespace
}  // namespace orvel
