#pragma once

#include <string>
#include <string_view>

namespace orvel {

class Preferences;

/// The secret that pairs phones with this computer, and the names of those that have proved it.
///
/// The secret is a token of 16 characters in the user's preferences under "orvel.token"; the names stand under
/// "orvel.devices". Keeps no state of its own. Threads: any. What replaces the token or adds a name may wait for the
/// file system; all else does not.
class PairingStore {
 public:
  explicit PairingStore(Preferences& preferences);

  /// The current token; makes and stores one when none of at least 12 characters is stored.
  std::string token();

  /// The token for the eye: groups of four joined by "-".
  std::string displayToken();

  /// Replaces the token and forgets all devices. Sessions that are authenticated stay so.
  void rotateToken();

  /// A fresh challenge: 32 lower-case hexadecimal digits.
  std::string randomNonce() const;

  /// The answer that a phone which knows the token gives to `nonce`: the HMAC-SHA256 of its text under the token's
  /// text, in lower-case hexadecimal.
  std::string expectedProof(std::string_view nonce);

  /// Whether `proof` answers `nonce`. Takes the same time wherever the first wrong character is.
  bool verify(std::string_view proof, std::string_view nonce);

  /// Adds a device's name unless it is known. May take as long as the file system takes.
  void remember(const std::string& name);

 private:
  Preferences& preferences_;
};

}  // namespace orvel
