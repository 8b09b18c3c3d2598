#include "tools/MediaNames.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace orvel::phone {
namespace {

constexpr std::pair<std::string_view, std::uint8_t> mediaKeys[] = {
    {"volume-up", 0},   {"volume-down", 1}, {"brightness-up", 2}, {"brightness-down", 3}, {"mute", 7},
    {"play-pause", 16}, {"next", 17},       {"previous", 18},     {"fast-forward", 19},   {"rewind", 20},
};

}  // namespace

std::optional<std::uint8_t> mediaKey(std::string_view word) {
  const auto* key = std::ranges::find(mediaKeys, word, [](const auto& entry) { return entry.first; });
  if (key != std::end(mediaKeys)) return key->second;
  std::uint8_t number = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace orvel::phone
