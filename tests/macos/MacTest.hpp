#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace orvel {

/// A test of leaves that run on the small runtime. It has a pool around it, and fails when it leaves an object behind.
class MacTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

 private:
  std::map<std::string, int> before_;
  void* pool_ = nullptr;
};

}  // namespace orvel
