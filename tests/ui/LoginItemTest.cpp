#include "fakes/FakeLoginItemService.hpp"
#include "ui/LoginItem.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

struct LoginItemTest : testing::Test {
  FakeLoginItemService list;
  LoginItem item{list};
};

TEST_F(LoginItemTest, SwitchingOnEntersIt) {
  EXPECT_TRUE(item.set(true));
  EXPECT_TRUE(item.isEnabled());
}

TEST_F(LoginItemTest, SwitchingOffTakesItOut) {
  item.set(true);
  EXPECT_TRUE(item.set(false));
  EXPECT_FALSE(item.isEnabled());
}

TEST_F(LoginItemTest, SwitchingOffWhatWasNeverOnReturnsFalseAndChangesNothing) {
  EXPECT_FALSE(item.set(false));
  EXPECT_FALSE(item.isEnabled());
}

TEST_F(LoginItemTest, AFailureReturnsFalseAndChangesNothing) {
  list.fails = true;
  EXPECT_FALSE(item.set(true));
  EXPECT_FALSE(item.isEnabled());
  list = {};
  item.set(true);
  list.fails = true;
  EXPECT_FALSE(item.set(false));
  EXPECT_TRUE(item.isEnabled());
}

}  // namespace
}  // namespace orvel
