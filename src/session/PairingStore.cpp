#include "session/PairingStore.hpp"

#include "base/Hex.hpp"
#include "session/Preferences.hpp"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace orvel {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHJKMNPQRSTUVWXYZ23456789";
constexpr std::size_t tokenLength = 16;
constexpr std::size_t shortestToken = 12;
constexpr std::size_t nonceLength = 16;
constexpr std::size_t groupSize = 4;
const std::string tokenKey = "orvel.token";
const std::string devicesKey = "orvel.devices";

template <std::size_t length>
std::array<std::uint8_t, length> randomBytes() {
  std::array<std::uint8_t, length> bytes;
  randombytes_buf(bytes.data(), bytes.size());
  return bytes;
}

std::string newToken() {
  std::string token;
  for (const std::uint8_t byte : randomBytes<tokenLength>()) token += alphabet[byte % alphabet.size()];
  return token;
}

/// Characters, not bytes: somebody may have chosen a token of letters beyond ASCII.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (static_cast<std::uint8_t>(byte) & 0xc0) != 0x80; }));
}

const std::uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

}  // namespace

PairingStore::PairingStore(Preferences& preferences) : preferences_(preferences) {}

std::string PairingStore::token() {
  if (auto stored = preferences_.string(tokenKey); stored && characterCount(*stored) >= shortestToken) {
    return *std::move(stored);
  }
  std::string token = newToken();
  preferences_.setMissing(tokenKey, token);
  return token;
}

std::string PairingStore::displayToken() {
  const std::string whole = token();
  std::string grouped;
  std::size_t characters = 0;
  for (const char byte : whole) {
    const bool startsCharacter = characterCount({&byte, 1}) == 1;
    if (startsCharacter && characters > 0 && characters % groupSize == 0) grouped += '-';
    if (startsCharacter) ++characters;
    grouped += byte;
  }
  return grouped;
}

void PairingStore::rotateToken() {
  preferences_.setString(tokenKey, newToken());
  preferences_.remove(devicesKey);
}

std::string PairingStore::randomNonce() const {
  return lowerHex(randomBytes<nonceLength>());
}

std::string PairingStore::expectedProof(std::string_view nonce) {
  const std::string key = token();
  crypto_auth_hmacsha256_state state;
  crypto_auth_hmacsha256_init(&state, bytesOf(key), key.size());
  crypto_auth_hmacsha256_update(&state, bytesOf(nonce), nonce.size());
  std::array<std::uint8_t, crypto_auth_hmacsha256_BYTES> code;
  crypto_auth_hmacsha256_final(&state, code.data());
  return lowerHex(code);
}

bool PairingStore::verify(std::string_view proof, std::string_view nonce) {
  const std::string expected = expectedProof(nonce);
  return proof.size() == expected.size() && sodium_memcmp(proof.data(), expected.data(), expected.size()) == 0;
}

void PairingStore::remember(const std::string& name) {
  preferences_.add(devicesKey, name);
}

}  // namespace orvel
