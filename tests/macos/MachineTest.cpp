#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/ComputerName.hpp"
#include "platform/macos/SystemMachine.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>

namespace orvel {
namespace {

class MachineTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::computerName().reset();
  }

  SystemMachine machine_;
};

TEST_F(MachineTest, IsCalledAsItsUserCallsIt) {
  fake::computerName() = "Ada’s Mac – Büro";
  onBareThread([&] { EXPECT_EQ(machine_.localizedName(), "Ada’s Mac – Büro"); });
  EXPECT_EQ(displayName(machine_), "Ada’s Mac – Büro");
}

TEST_F(MachineTest, WithoutSuchANameItHasThatOfTheNetwork) {
  EXPECT_EQ(machine_.localizedName(), std::nullopt);
  fake::computerName() = "";
  EXPECT_EQ(machine_.localizedName(), std::nullopt);
  std::array<char, 256> expected{};
  ASSERT_EQ(gethostname(expected.data(), expected.size() - 1), 0);
  EXPECT_EQ(machine_.hostName(), expected.data());
  EXPECT_EQ(displayName(machine_), expected.data());
}

TEST_F(MachineTest, IsAMac) {
  EXPECT_EQ(machine_.kind(), "Mac");
}

TEST_F(MachineTest, HasALoopback) {
  EXPECT_THAT(machine_.interfaces(),
              testing::Contains(testing::AllOf(testing::Field(&NetworkInterface::isUp, true),
                                               testing::Field(&NetworkInterface::isLoopback, true),
                                               testing::Field(&NetworkInterface::address, "127.0.0.1"))));
}

}  // namespace
}  // namespace orvel
