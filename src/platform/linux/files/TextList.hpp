#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/files/Files.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>

namespace orvel {

/// A list of texts that only grows, in a file of its own: one text a line. To add a text costs the writing of that
/// text, and nothing when it is there; of all texts only a digest each is kept in memory. However long the list and its
/// texts are, the file is read in pieces, and only anew when another program has changed it.
///
/// Threads: any; one caller at a time touches the file.
class TextList {
 public:
  explicit TextList(std::string path);

  /// Adds a text to the end unless it is there. Makes the file, for its user alone, but not its folder. Waits for
  /// others who write for half a second. False when it cannot be stored; nothing of it is kept then.
  bool add(const std::string& text);

  /// Takes the list away.
  void remove();

 private:
  using Digest = std::array<std::uint8_t, 16>;
  static_assert(sizeof(Digest) >= sizeof(std::size_t));

  struct DigestHash {
    std::size_t operator()(const Digest& digest) const {
      std::size_t hash = 0;
      std::memcpy(&hash, digest.data(), sizeof hash);
      return hash;
    }
  };

  struct State {
    std::unordered_set<Digest, DigestHash> known;
    std::optional<FileStamp> stamp;  // of the file that `known` is of
  };

  bool refresh(State& state) const;
  bool append(State& state, const std::string& line, const Digest& digest) const;

  const std::string path_;
  Guarded<State> state_;
};

}  // namespace orvel
