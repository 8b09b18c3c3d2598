#include "catalog/AppEntry.hpp"

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

namespace orvel {
namespace {

TEST(AppEntry, HasThreeKeysInThisOrder) {
  const AppEntry entry{"org.example.Editor", "\"Ed\"", true};
  EXPECT_EQ(boost::json::serialize(entry.json()), R"({"id":"org.example.Editor","name":"\"Ed\"","running":true})");
}

}  // namespace
}  // namespace orvel
