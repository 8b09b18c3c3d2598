#include "fakes/FakeMachine.hpp"
#include "session/Machine.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

std::optional<std::string> addressAmong(std::vector<NetworkInterface> interfaces) {
  FakeMachine machine;
  machine.addresses = std::move(interfaces);
  return NetworkInfo::localAddress(machine);
}

TEST(NetworkInfo, PrefersTheBuiltInInterfacesInTheirOrder) {
  EXPECT_EQ(addressAmong({{"en1", "192.168.1.5", true, false}, {"en0", "10.0.0.2", true, false}}), "10.0.0.2");
  EXPECT_EQ(addressAmong({{"bridge0", "10.0.0.9", true, false}, {"en2", "10.0.0.3", true, false}}), "10.0.0.3");
  EXPECT_EQ(addressAmong({{"wlan0", "10.0.0.8", true, false}, {"bridge0", "10.0.0.9", true, false}}), "10.0.0.9");
}

TEST(NetworkInfo, PrefersTheFirstOfTheBuiltInInterfacesWhateverTheSystemsOrder) {
  const NetworkInterface first = {"en0", "10.0.0.1", true, false};
  const NetworkInterface second = {"en1", "10.0.0.2", true, false};
  const NetworkInterface third = {"en2", "10.0.0.3", true, false};
  EXPECT_EQ(addressAmong({third, second, first}), "10.0.0.1");
  EXPECT_EQ(addressAmong({second, third, first}), "10.0.0.1");
  EXPECT_EQ(addressAmong({third, second}), "10.0.0.2");
}

TEST(NetworkInfo, OfAnInterfaceWithSeveralAddressesTakesTheFirst) {
  EXPECT_EQ(addressAmong(
                {{"en1", "10.0.0.9", true, false}, {"en0", "10.0.0.2", true, false}, {"en0", "10.0.0.1", true, false}}),
            "10.0.0.2");
}

TEST(NetworkInfo, OtherwiseTakesTheFirst) {
  EXPECT_EQ(addressAmong({{"wlan0", "10.0.0.8", true, false}, {"eth0", "10.0.0.7", true, false}}), "10.0.0.8");
}

TEST(NetworkInfo, OneInterfaceMayHaveSeveralAddresses) {
  EXPECT_EQ(addressAmong({{"en0", "169.254.3.4", true, false}, {"en0", "10.0.0.2", true, false}}), "10.0.0.2");
}

TEST(NetworkInfo, SkipsLoopbackLinkLocalAndInterfacesThatAreDown) {
  EXPECT_EQ(addressAmong({{"lo", "127.0.0.1", true, true}, {"en0", "169.254.10.20", true, false}}), std::nullopt);
  EXPECT_EQ(addressAmong({{"en0", "10.0.0.2", false, false}, {"eth0", "10.0.0.7", true, false}}), "10.0.0.7");
  EXPECT_EQ(addressAmong({}), std::nullopt);
}

TEST(Machine, HasANameInAnyCase) {
  FakeMachine machine;
  EXPECT_EQ(displayName(machine), "Test Mac");
  machine.localized.reset();
  EXPECT_EQ(displayName(machine), "test-mac.local");
  machine.localized = "";
  EXPECT_EQ(displayName(machine), "test-mac.local");
  machine.host = "";
  EXPECT_FALSE(displayName(machine).empty());
}

}  // namespace
}  // namespace orvel
