#include "desktop/ChildProcess.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>

namespace orvel {
namespace {

TEST(ChildProcessTest, ItsOutputAndItsExitCodeAreSeen) {
  ChildProcess child(
      {.command = {"sh", "-c", "echo out $GIVEN; echo error >&2; exit 3"}, .environment = {{"GIVEN", "given"}}});
  EXPECT_EQ(child.waitForExit(), 3);
  EXPECT_EQ(child.output(), "out given\nerror\n");
}

TEST(ChildProcessTest, ItReadsWhatIsWrittenToIt) {
  ChildProcess child({.command = {"cat"}});
  child.write("hello\n");
  EXPECT_TRUE(child.waitForOutput("hello"));
  child.closeInput();
  EXPECT_EQ(child.waitForExit(), 0);
}

TEST(ChildProcessTest, WaitingHasALimit) {
  ChildProcess child({.command = {"sleep", "1000"}});
  EXPECT_EQ(child.waitForExit(Milliseconds(20)), std::nullopt);
  EXPECT_FALSE(child.waitForOutput("never", Milliseconds(20)));
  child.signal(SIGTERM);
  EXPECT_EQ(child.waitForExit(), 128 + SIGTERM);
}

TEST(ChildProcessTest, OutputThatCannotComeAnyMoreIsNotWaitedFor) {
  ChildProcess child({.command = {"true"}});
  EXPECT_FALSE(child.waitForOutput("never"));
}

TEST(ChildProcessTest, AProgramThatIsNotThereEndsWith127) {
  ChildProcess child({.command = {"/nonexistent/program"}});
  EXPECT_EQ(child.waitForExit(), 127);
}

TEST(ChildProcessTest, ItDiesWithItsObject) {
  pid_t pid = 0;
  {
    const ChildProcess child({.command = {"sleep", "1000"}});
    pid = child.pid();
    EXPECT_EQ(kill(pid, 0), 0);
  }
  EXPECT_EQ(kill(pid, 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

}  // namespace
}  // namespace orvel
