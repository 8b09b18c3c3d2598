#include "platform/macos/OpenFiles.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>

namespace orvel {
namespace {

struct OpenFilesTest : testing::Test {
  void SetUp() override { getrlimit(RLIMIT_NOFILE, &before); }
  void TearDown() override { setrlimit(RLIMIT_NOFILE, &before); }

  rlim_t afterAllowing(rlim_t usual) const {
    rlimit limit{usual, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
    OpenFiles::allowMany();
    getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(limit.rlim_max, before.rlim_max);
    return limit.rlim_cur;
  }

  rlimit before{};
};

TEST_F(OpenFilesTest, AreAsManyAsTheSystemLetsAProgramHave) {
  EXPECT_EQ(afterAllowing(256), std::min<rlim_t>(before.rlim_max, 10240));
}

TEST_F(OpenFilesTest, AreNotFewerThanBefore) {
  if (before.rlim_max <= 10240) GTEST_SKIP() << "this login allows no more";
  EXPECT_EQ(afterAllowing(before.rlim_max), before.rlim_max);
}

}  // namespace
}  // namespace orvel
