#include "desktop/TemporaryFolder.hpp"
#include "platform/linux/SystemMachine.hpp"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <string>

namespace orvel {
namespace {

class SystemMachineTest : public ::testing::Test {
 protected:
  std::optional<std::string> localizedNameIn(const std::string& content) {
    const auto file = folder_.path() / "machine-info";
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
    return SystemMachine(file).localizedName();
  }

  TemporaryFolder folder_;
};

TEST_F(SystemMachineTest, IsAComputer) {
  EXPECT_EQ(SystemMachine().kind(), "computer");
}

TEST_F(SystemMachineTest, ThePrettyHostNameIsTheLocalizedName) {
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=Desk\n"), "Desk");
  EXPECT_EQ(localizedNameIn("ICON_NAME=computer\nPRETTY_HOSTNAME=\"Ada's Desk\"\nCHASSIS=desktop\n"), "Ada's Desk");
}

TEST_F(SystemMachineTest, QuotesAndEscapesAreThoseOfTheShell) {
  EXPECT_EQ(localizedNameIn(R"(PRETTY_HOSTNAME='Ada "the" Desk\n')"), R"(Ada "the" Desk\n)");
  EXPECT_EQ(localizedNameIn(R"(PRETTY_HOSTNAME="a \"b\" \\ \$c \d")"), R"(a "b" \ $c \d)");
  EXPECT_EQ(localizedNameIn(R"(PRETTY_HOSTNAME=Ada\ Desk)"), "Ada Desk");
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=Ada # her desk\r\n"), "Ada");
  EXPECT_EQ(localizedNameIn("  PRETTY_HOSTNAME=\"Küche 🍳\"  \n"), "Küche 🍳");
}

TEST_F(SystemMachineTest, TheLastAssignmentCounts) {
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=First\nPRETTY_HOSTNAME=Second"), "Second");
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=First\nPRETTY_HOSTNAME="), std::nullopt);
}

TEST_F(SystemMachineTest, CommentsAndOtherKeysDoNotCount) {
  EXPECT_EQ(localizedNameIn("#PRETTY_HOSTNAME=Desk\n"), std::nullopt);
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME_OLD=Desk\n"), std::nullopt);
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME Desk\n"), std::nullopt);
}

TEST_F(SystemMachineTest, BytesThatAreNoTextAreReplaced) {
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=De\xffsk\n"), "De\uFFFDsk");
}

TEST_F(SystemMachineTest, AnUnusableFileGivesNoName) {
  EXPECT_EQ(localizedNameIn(""), std::nullopt);
  EXPECT_EQ(localizedNameIn(std::string(200000, 'x')), std::nullopt);
  EXPECT_EQ(localizedNameIn("PRETTY_HOSTNAME=\"never closed"), "never closed");
  EXPECT_EQ(SystemMachine(folder_.path() / "missing").localizedName(), std::nullopt);
  EXPECT_EQ(SystemMachine(folder_.path()).localizedName(), std::nullopt);
}

TEST_F(SystemMachineTest, TheHostNameIsTheKernels) {
  std::array<char, 256> expected{};
  ASSERT_EQ(gethostname(expected.data(), expected.size() - 1), 0);
  EXPECT_EQ(SystemMachine().hostName(), expected.data());
}

TEST_F(SystemMachineTest, TheLoopbackInterfaceIsListedWithItsFlags) {
  const auto interfaces = SystemMachine().interfaces();
  const auto loopback = std::find_if(interfaces.begin(), interfaces.end(),
                                     [](const NetworkInterface& each) { return each.address == "127.0.0.1"; });
  ASSERT_NE(loopback, interfaces.end());
  EXPECT_EQ(loopback->name, "lo");
  EXPECT_TRUE(loopback->isUp);
  EXPECT_TRUE(loopback->isLoopback);
}

TEST_F(SystemMachineTest, EveryAddressIsADottedQuad) {
  for (const NetworkInterface& each : SystemMachine().interfaces()) {
    in_addr parsed{};
    EXPECT_EQ(inet_pton(AF_INET, each.address.c_str(), &parsed), 1) << each.address;
  }
}

}  // namespace
}  // namespace orvel
