#include "platform/linux/appearance/DesktopTheme.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace orvel {
namespace {

TEST(DarkThemeTest, ADarkThemeSaysSo) {
  for (const char* name :
       {"Adwaita-dark", "Breeze-Dark", "Yaru-dark", "Yaru-blue-dark", "Arc-Dark", "BreezeDark", "DARK", "dark",
        "Materia-dark-compact", "Mint-Y-Dark-Aqua", "DarkBlue", "Adwaita:dark", "Dark_Mod", "dark2", "Darkly Dark"}) {
    EXPECT_TRUE(isDarkTheme(name)) << name;
  }
}

TEST(DarkThemeTest, OthersAreLight) {
  for (const char* name :
       {"", "Adwaita", "Breeze", "Arc-Darker", "Darkroom", "Endarken", "dar", "ark", "Undark", "d"}) {
    EXPECT_FALSE(isDarkTheme(name)) << name;
  }
}

struct FontCase {
  const char* text;
  const char* family;
  double size;
};

struct FontDescriptionTest : testing::TestWithParam<FontCase> {};

TEST_P(FontDescriptionTest, IsUnderstood) {
  EXPECT_EQ(parseFontDescription(GetParam().text), (DesktopFont{GetParam().family, GetParam().size}))
      << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    , FontDescriptionTest,
    testing::Values(FontCase{"Cantarell 11", "Cantarell", 11}, FontCase{"Noto Sans Bold 10.5", "Noto Sans", 10.5},
                    FontCase{"Noto Sans,  10", "Noto Sans", 10}, FontCase{"DejaVu Sans Mono 9", "DejaVu Sans Mono", 9},
                    FontCase{"Segoe UI Semi-Bold Italic 12", "Segoe UI", 12}, FontCase{"Inter SemiBold 4", "Inter", 4},
                    FontCase{"Arial Black, 72", "Arial Black", 72}, FontCase{"Ubuntu, Cantarell Bold 11", "Ubuntu", 11},
                    FontCase{"Ubuntu Light 11", "Ubuntu", 11}, FontCase{"  Sans \t 10  ", "Sans", 10},
                    FontCase{"Cantarell Bold 11 @wght=200 #tnum=1", "Cantarell", 11},
                    FontCase{"源ノ角ゴシック 11", "源ノ角ゴシック", 11},
                    FontCase{"Source Code Pro 10 10", "Source Code Pro 10", 10}));

TEST(DamagedFontDescriptionTest, IsNothing) {
  for (const std::string& text : {std::string(),
                                  std::string("Cantarell"),
                                  std::string("11"),
                                  std::string("Bold 11"),
                                  std::string("Bold Italic 11"),
                                  std::string(", 11"),
                                  std::string("Cantarell 3.9"),
                                  std::string("Cantarell 72.1"),
                                  std::string("Cantarell 0"),
                                  std::string("Cantarell -11"),
                                  std::string("Cantarell 12px"),
                                  std::string("Cantarell nan"),
                                  std::string("Cantarell inf"),
                                  std::string("Cantarell 1e1"),
                                  std::string("Cantarell 0x10"),
                                  std::string("Cantarell 11,5"),
                                  std::string("Cantarell 99999999999999999999999999999999"),
                                  std::string("Canta\xffrell 11"),
                                  std::string("   "),
                                  std::string("@ @ @"),
                                  std::string(100'000, ' '),
                                  std::string(100'000, 'x') + " 11"}) {
    EXPECT_EQ(parseFontDescription(text), std::nullopt) << text.substr(0, 40);
  }
}

}  // namespace
}  // namespace orvel
