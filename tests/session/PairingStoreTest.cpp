#include "fakes/FakeMachine.hpp"
#include "session/PairingStore.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace orvel {
namespace {

struct PairingStoreTest : testing::Test {
  MemoryPreferences preferences;
  PairingStore pairing{preferences};
};

TEST_F(PairingStoreTest, TheFirstReadMakesATokenThatStays) {
  const std::string token = pairing.token();
  EXPECT_EQ(token.size(), 16u);
  EXPECT_EQ(token.find_first_not_of("ABCDEFGHJKMNPQRSTUVWXYZ23456789"), std::string::npos) << token;
  EXPECT_EQ(pairing.token(), token);
  EXPECT_EQ(preferences.texts.at("orvel.token"), token);
  EXPECT_EQ(PairingStore(preferences).token(), token);
}

TEST_F(PairingStoreTest, TokensUseTheWholeAlphabetAndDiffer) {
  std::set<std::string> tokens;
  std::set<char> characters;
  for (int draw = 0; draw < 200; ++draw) {
    pairing.rotateToken();
    const std::string token = pairing.token();
    tokens.insert(token);
    characters.insert(token.begin(), token.end());
  }
  EXPECT_EQ(tokens.size(), 200u);
  EXPECT_EQ(characters.size(), 31u);
}

TEST_F(PairingStoreTest, AStoredTokenOfTwelveCharactersIsKept) {
  preferences.setString("orvel.token", "abc def-1234");
  EXPECT_EQ(pairing.token(), "abc def-1234");
  preferences.setString("orvel.token", "ABCDEFGHJKM");
  EXPECT_EQ(pairing.token().size(), 16u);
  EXPECT_EQ(preferences.texts.at("orvel.token"), pairing.token());
}

TEST_F(PairingStoreTest, LengthCountsCharactersNotBytes) {
  preferences.setString("orvel.token", "\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9");
  EXPECT_EQ(pairing.token().size(), 16u) << "eleven characters of two bytes each are too short";
}

TEST_F(PairingStoreTest, TheDisplayFormGroupsByFour) {
  const auto shown = [&](const char* token) {
    preferences.setString("orvel.token", token);
    return pairing.displayToken();
  };
  EXPECT_EQ(shown("ABCDEFGHJKMNPQRS"), "ABCD-EFGH-JKMN-PQRS");
  EXPECT_EQ(shown("ABCDEFGHJKMNPQ"), "ABCD-EFGH-JKMN-PQ");
  EXPECT_EQ(shown("ABCDEFGHJKMN"), "ABCD-EFGH-JKMN");
  EXPECT_EQ(shown("\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9"),
            "\u00e9\u00e9\u00e9\u00e9-\u00e9\u00e9\u00e9\u00e9-\u00e9\u00e9\u00e9\u00e9");
}

TEST_F(PairingStoreTest, NoncesAreThirtyTwoLowerCaseHexDigits) {
  std::set<std::string> nonces;
  for (int draw = 0; draw < 100; ++draw) {
    const std::string nonce = pairing.randomNonce();
    EXPECT_EQ(nonce.size(), 32u);
    EXPECT_EQ(nonce.find_first_not_of("0123456789abcdef"), std::string::npos) << nonce;
    nonces.insert(nonce);
  }
  EXPECT_EQ(nonces.size(), 100u);
}

// Computed with: printf '%s' NONCE | openssl dgst -sha256 -hmac TOKEN
TEST_F(PairingStoreTest, TheProofIsTheStandardHMAC) {
  preferences.setString("orvel.token", "ABCDEFGHJKMNPQRS");
  EXPECT_EQ(pairing.expectedProof("000102030405060708090a0b0c0d0e0f"),
            "8ace08c6e342f33912254dd87f331b9bab5ea8cdc0130bab7165df77f352cd12");
  EXPECT_EQ(pairing.expectedProof("ffffffffffffffffffffffffffffffff"),
            "fa5cb517fb144e1ed827a03ce5b395daa1706cb6cc787cd7b5e61c66ba052224");
  preferences.setString("orvel.token", std::string(100, 'Z'));
  EXPECT_EQ(pairing.expectedProof("000102030405060708090a0b0c0d0e0f"),
            "4e85b8d59e726aef8daa4dcbd20973d391ff372f0073e3d89692e50b1bb2fe23")
      << "a key longer than the block is hashed first";
}

TEST_F(PairingStoreTest, OnlyTheExactProofVerifies) {
  const std::string nonce = pairing.randomNonce();
  const std::string proof = pairing.expectedProof(nonce);
  EXPECT_TRUE(pairing.verify(proof, nonce));
  for (std::size_t place = 0; place < proof.size(); ++place) {
    std::string changed = proof;
    changed[place] = changed[place] == '0' ? '1' : '0';
    EXPECT_FALSE(pairing.verify(changed, nonce)) << place;
  }
  std::string upper = proof;
  std::ranges::transform(upper, upper.begin(), [](char digit) { return static_cast<char>(std::toupper(digit)); });
  ASSERT_NE(upper, proof);
  EXPECT_FALSE(pairing.verify(upper, nonce));
  EXPECT_FALSE(pairing.verify(proof.substr(1), nonce));
  EXPECT_FALSE(pairing.verify(proof + "0", nonce));
  EXPECT_FALSE(pairing.verify("", nonce));
  EXPECT_FALSE(pairing.verify(proof, pairing.randomNonce()));
}

TEST_F(PairingStoreTest, AProofUnderAnOldTokenIsRefused) {
  const std::string nonce = pairing.randomNonce();
  const std::string proof = pairing.expectedProof(nonce);
  pairing.rotateToken();
  EXPECT_FALSE(pairing.verify(proof, nonce));
}

TEST_F(PairingStoreTest, ManyAndLongNamesAreRememberedAndTheTokenStays) {
  const std::string token = pairing.token();
  for (int i = 0; i < 2000; ++i) pairing.remember(std::to_string(i) + std::string(2000, 'x'));
  EXPECT_EQ(preferences.lists.at("orvel.devices").size(), 2000u);
  EXPECT_EQ(pairing.token(), token);
}

TEST_F(PairingStoreTest, DevicesAreRememberedOnceInOrderUntilTheTokenRotates) {
  pairing.remember("Zoe's phone");
  pairing.remember("Adam's phone");
  pairing.remember("Zoe's phone");
  EXPECT_THAT(preferences.lists.at("orvel.devices"), testing::ElementsAre("Zoe's phone", "Adam's phone"));
  pairing.rotateToken();
  EXPECT_FALSE(preferences.lists.contains("orvel.devices"));
}

}  // namespace
}  // namespace orvel
