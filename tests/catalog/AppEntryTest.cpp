#include "catalog/AppEntry.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

namespace orvel {
namespace {

TEST(AppEntry, HasThreeKeysInThisOrder) {
  const AppEntry entry{"org.example.Editor", "\"Ed\"", true};
  EXPECT_EQ(boost::json::serialize(entry.json()), R"({"id":"org.example.Editor","name":"\"Ed\"","running":true})");
}

TEST(AppEntry, ComesBackAsItWas) {
  for (const bool running : {true, false}) {
    const AppEntry entry{"a", "", running};
    EXPECT_EQ(AppEntry::from(entry.json()), entry);
  }
}

TEST(AppEntry, NeedsAllOfItsKeysInTheirTypes) {
  const auto read = [](const char* json) { return AppEntry::from(boost::json::parse(json).as_object()); };
  EXPECT_TRUE(read(R"({"id":"a","name":"A","running":false,"more":1})"));
  EXPECT_FALSE(read(R"({"name":"A","running":false})"));
  EXPECT_FALSE(read(R"({"id":"a","running":false})"));
  EXPECT_FALSE(read(R"({"id":"a","name":"A"})"));
  EXPECT_FALSE(read(R"({"id":1,"name":"A","running":false})"));
  EXPECT_FALSE(read(R"({"id":"a","name":null,"running":false})"));
  EXPECT_FALSE(read(R"({"id":"a","name":"A","running":1})"));
  EXPECT_FALSE(read(R"({"id":"a","name":"A","running":"true"})"));
}

}  // namespace
}  // namespace orvel
