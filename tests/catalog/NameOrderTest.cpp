#include "catalog/NameOrder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orvel {
namespace {

std::vector<std::string> sorted(const std::string& locale, std::vector<std::string> names) {
  const NameOrder order(locale);
  std::stable_sort(names.begin(), names.end(),
                   [&](const std::string& a, const std::string& b) { return order.key(a) < order.key(b); });
  return names;
}

using Names = std::vector<std::string>;

TEST(NameOrder, CapitalsMakeNoDifference) {
  EXPECT_EQ(sorted("en_US", {"beta", "Alpha", "alpha"}), (Names{"Alpha", "alpha", "beta"}));
  EXPECT_EQ(sorted("en_US", {"beta", "alpha", "Alpha"}), (Names{"alpha", "Alpha", "beta"}));
  EXPECT_EQ(sorted("en_US", {"zebra", "Yak", "ant"}), (Names{"ant", "Yak", "zebra"}));
}

TEST(NameOrder, AccentsDo) {
  EXPECT_EQ(sorted("en_US", {"\u00e9t\u00e9", "ete", "etf"}), (Names{"ete", "\u00e9t\u00e9", "etf"}));
}

TEST(NameOrder, EachLanguageHasItsOwn) {
  EXPECT_EQ(sorted("de_DE", {"z", "\u00e4", "b"}), (Names{"\u00e4", "b", "z"}));
  EXPECT_EQ(sorted("sv_SE", {"z", "\u00e4", "b"}), (Names{"b", "z", "\u00e4"}));
}

TEST(NameOrder, WithoutALanguageItIsStillOneForPeople) {
  for (const char* locale : {"C", "POSIX", "en_US_POSIX", "", "xx_YY"}) {
    EXPECT_EQ(sorted(locale, {"Zebra", "\u00e4", "ant", "Ant", "b"}), (Names{"\u00e4", "ant", "Ant", "b", "Zebra"}))
        << locale;
  }
}

TEST(NameOrder, EmptyNamesComeFirst) {
  EXPECT_EQ(sorted("en_US", {"a", "", "1"}), (Names{"", "1", "a"}));
}

}  // namespace
}  // namespace orvel
