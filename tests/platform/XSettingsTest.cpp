#include "platform/linux/x11/X11ThemeSettings.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvel {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

TEST(XSettingsTest, TextsAreReadInEitherByteOrder) {
  using namespace std::string_literals;
  const auto little = "\0\0\0\0\7\0\0\0\3\0\0\0"s + "\0\0\3\0Abc\0\1\0\0\0\5\0\0\0"s +
                      "\2\0\1\0C\0\0\0\1\0\0\0\1\2\3\4\5\6\7\x8"s + "\1\0\5\0Theme\0\0\0\1\0\0\0\4\0\0\0Oak!"s;
  EXPECT_EQ(parseXSettings(bytesOf(little)), (std::map<std::string, std::string>{{"Theme", "Oak!"}}));
  const auto big = "\1\0\0\0\0\0\0\7\0\0\0\1"s + "\1\0\0\5Theme\0\0\0\0\0\0\1\0\0\0\3Oak\0"s;
  EXPECT_EQ(parseXSettings(bytesOf(big)), (std::map<std::string, std::string>{{"Theme", "Oak"}}));
}

TEST(XSettingsTest, DamagedSettingsAreReadAsFarAsTheyGo) {
  using namespace std::string_literals;
  const auto whole = "\0\0\0\0\7\0\0\0\xff\xff\xff\xff\1\0\1\0T\0\0\0\1\0\0\0\3\0\0\0Oak\0\1\0\xff\xffX"s;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const auto texts = parseXSettings(bytesOf(whole.substr(0, length)));
    EXPECT_EQ(texts.size(), length >= 32 ? 1u : 0u) << length;
  }
}

}  // namespace
}  // namespace orvel
