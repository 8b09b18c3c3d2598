#include "MacTest.hpp"
#include "frameworks/Accessibility.hpp"
#include "platform/macos/SystemAccessibilityTree.hpp"
#include "runtime/Dispatch.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AccessibilityTreeTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::accessibility() = {};
    attributes_ = {{"AXRole", "AXButton"}, {"AXPosition", CGPoint{-10.5, 20}}, {"AXSize", CGSize{40, 22.5}}};
    tree_ = std::make_unique<SystemAccessibilityTree>();
  }

  void TearDown() override {
    tree_.reset();
    MacTest::TearDown();
  }

  std::map<std::string, fake::Attribute>& attributes_ = fake::accessibility().attributes;
  std::unique_ptr<SystemAccessibilityTree> tree_;
};

TEST_F(AccessibilityTreeTest, AnElementHasItsRoleAndItsPlace) {
  const auto element = tree_->elementAt({100.25, -50});
  ASSERT_TRUE(element);
  EXPECT_EQ(element->role, "AXButton");
  EXPECT_EQ(element->position, (Point{-10.5, 20}));
  EXPECT_EQ(element->size, (Size{40, 22.5}));
  EXPECT_THAT(fake::accessibility().searches, ElementsAre(std::pair(100.25F, -50.0F)));
}

TEST_F(AccessibilityTreeTest, TheMainThreadAsksForAnyOther) {
  auto element = std::async(std::launch::async, [this] { return tree_->elementAt({3, 4}); });
  while (element.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) dispatch::turnMainQueue();
  const auto found = element.get();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->role, "AXButton");
  EXPECT_THAT(fake::accessibility().searches, ElementsAre(std::pair(3.0F, 4.0F)));
  EXPECT_FALSE(fake::accessibility().isAskedElsewhere) << "our own windows would answer there, too";
}

TEST_F(AccessibilityTreeTest, ABusyMainThreadIsNotWaitedForAndAsksNothingLater) {
  EXPECT_FALSE(std::async(std::launch::async, [this] { return tree_->elementAt({}); }).get());
  tree_.reset();
  EXPECT_EQ(dispatch::turnMainQueue(), 1);
  EXPECT_THAT(fake::accessibility().searches, IsEmpty());
}

TEST_F(AccessibilityTreeTest, NoProgramIsWaitedForLongerThanAQuarterOfASecond) {
  tree_->elementAt({});
  tree_->elementAt({});
  EXPECT_THAT(fake::accessibility().timeouts, ElementsAre(0.25F));
}

TEST_F(AccessibilityTreeTest, WhereTheSearchFailsThereIsNothing) {
  for (const AXError error : {kAXErrorCannotComplete, kAXErrorAPIDisabled, kAXErrorNoValue}) {
    fake::accessibility().searchFailure = error;
    EXPECT_FALSE(tree_->elementAt({}));
  }
  EXPECT_THAT(fake::accessibility().questions, IsEmpty());
}

TEST_F(AccessibilityTreeTest, ASearchThatFindsNothingIsNoElement) {
  fake::accessibility().isNothingThere = true;
  EXPECT_FALSE(tree_->elementAt({}));
}

TEST_F(AccessibilityTreeTest, AnAttributeThatAnElementLacksIsAbsent) {
  attributes_ = {{"AXRole", kAXErrorAttributeUnsupported}, {"AXPosition", CGPoint{1, 2}}};
  const auto element = tree_->elementAt({});
  ASSERT_TRUE(element);
  EXPECT_FALSE(element->role);
  EXPECT_EQ(element->position, (Point{1, 2}));
  EXPECT_FALSE(element->size);
}

TEST_F(AccessibilityTreeTest, ValuesOfAnotherTypeAreNotThere) {
  attributes_ = {{"AXRole", CGPoint{}}, {"AXPosition", "here"}, {"AXSize", CGPoint{3, 4}}};
  auto element = tree_->elementAt({});
  ASSERT_TRUE(element);
  EXPECT_FALSE(element->role);
  EXPECT_FALSE(element->position);
  EXPECT_FALSE(element->size);
  attributes_["AXPosition"] = CGSize{3, 4};
  element = tree_->elementAt({});
  ASSERT_TRUE(element);
  EXPECT_FALSE(element->position);
}

TEST_F(AccessibilityTreeTest, AProgramThatHangsIsAskedNoFurther) {
  attributes_["AXPosition"] = kAXErrorCannotComplete;
  EXPECT_FALSE(tree_->elementAt({}));
  EXPECT_THAT(fake::accessibility().questions, ElementsAre("AXRole", "AXPosition"));
}

}  // namespace
}  // namespace orvel
