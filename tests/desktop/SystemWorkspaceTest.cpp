#include "desktop/LeafFixture.hpp"

#include <semaphore>

namespace orvel {
namespace {

struct SystemWorkspaceTest : LeafFixture {
  std::counting_semaphore<> activations{0};
};

TEST_F(SystemWorkspaceTest, AnotherActiveWindowIsToldOfEachTime) {
  leaves.workspace.observeActivation([this] { activations.release(); });
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 17);
  EXPECT_TRUE(activations.try_acquire_for(timeout));
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 18);
  EXPECT_TRUE(activations.try_acquire_for(timeout));
  EXPECT_FALSE(activations.try_acquire());
}

TEST_F(SystemWorkspaceTest, OtherPropertiesAreNot) {
  leaves.workspace.observeActivation([this] { activations.release(); });
  witness.setRootProperty("_NET_CURRENT_DESKTOP", 1);
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 17);
  EXPECT_TRUE(activations.try_acquire_for(timeout));
  EXPECT_FALSE(activations.try_acquire()) << "only the last of the two";
}

TEST_F(SystemWorkspaceTest, ActivationsThatNobodyObservesAreHarmless) {
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 17);
  witness.catchUp();
  leaves.workspace.observeActivation([this] { activations.release(); });
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 18);
  EXPECT_TRUE(activations.try_acquire_for(timeout));
}

}  // namespace
}  // namespace orvel
