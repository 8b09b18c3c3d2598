#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace orvel {

/// The system bus, the Avahi daemon and other programs in a network of the test's own. Skipped where that is not
/// permitted.
class BonjourTest : public ::testing::Test {
 protected:
  struct Found {
    std::string name;
    std::string port;
    std::string text = {};  ///< Of its TXT record.

    friend bool operator==(const Found&, const Found&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Found& each) {
      return out << each.name << ':' << each.port << ' ' << each.text;
    }
  };

  static void SetUpTestSuite();
  void SetUp() override;
  void TearDown() override;

  static std::unique_ptr<ChildProcess> start(std::vector<std::string> command);
  void startBus();
  void stopBus();
  void startDaemon();
  void stopDaemon();
  void startAll();

  /// What the network offers now.
  static std::vector<Found> browse();

  static void expectOffered(const std::vector<Found>& expected);
  static bool eventually(const std::function<bool()>& holds);

  TemporaryFolder scratch_;
  std::unique_ptr<ChildProcess> bus_;
  std::unique_ptr<ChildProcess> daemon_;

 private:
  static std::optional<std::string>& obstacle();
};

}  // namespace orvel
