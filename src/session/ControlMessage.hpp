#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvel {

/// What a control message says. Keys of another type count as missing.
struct ControlMessage {
  static constexpr std::size_t mostIDs = 40;

  std::string kind;  ///< The string under "t".
  std::optional<std::string> proof;
  std::optional<std::string> device;
  std::optional<std::vector<std::string>> ids;  ///< The first `mostIDs` of them.
  std::optional<std::int64_t> width;            ///< Numbers that are no integers count as missing here.
  std::optional<std::int64_t> fps;
  std::optional<double> quality;

  /// Reads one message. Nothing when it is no JSON object with a string under "t". Whatever else stands in it is passed
  /// over without being kept, however large it is.
  static std::optional<ControlMessage> parse(std::span<const std::uint8_t> data);
};

}  // namespace orvel
