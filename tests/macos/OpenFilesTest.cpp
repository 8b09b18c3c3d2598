#include "platform/macos/OpenFiles.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

TEST(OpenFilesTest, AreAsManyAsTheSystemLetsAProgramHave) {
  EXPECT_EQ(OpenFiles::enough({.rlim_cur = 256, .rlim_max = 1000}), 1000u);
  EXPECT_EQ(OpenFiles::enough({.rlim_cur = 256, .rlim_max = RLIM_INFINITY}), 10240u);
}

TEST(OpenFilesTest, AreNotFewerThanBefore) {
  EXPECT_EQ(OpenFiles::enough({.rlim_cur = 20000, .rlim_max = RLIM_INFINITY}), 20000u);
}

TEST(OpenFilesTest, AreAllowedToThisProcess) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit usual{.rlim_cur = 256, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  OpenFiles::allowMany();
  rlimit after{};
  EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &after), 0);
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(after.rlim_cur, OpenFiles::enough(usual));
  EXPECT_EQ(after.rlim_max, before.rlim_max);
}

}  // namespace
}  // namespace orvel
