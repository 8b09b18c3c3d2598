#include "platform/macos/SystemMachine.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvel {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

TEST(SystemMachine, HasAName) {
  const SystemMachine machine;
  EXPECT_THAT(machine.hostName(), Not(IsEmpty()));
  EXPECT_THAT(displayName(machine), Not(IsEmpty()));
}

TEST(SystemMachine, KnowsItsLoopback) {
  EXPECT_THAT(SystemMachine().interfaces(),
              Contains(AllOf(Field(&NetworkInterface::address, "127.0.0.1"), Field(&NetworkInterface::isUp, true),
                             Field(&NetworkInterface::isLoopback, true))));
}

}  // namespace
}  // namespace orvel
