#include "desktop/VirtualDesktop.hpp"
#include "platform/linux/SystemScreenRecordingAccess.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <gtest/gtest.h>

#include <csignal>

namespace orvel {
namespace {

TEST(SystemScreenRecordingAccessTest, AServerThatShowsItsScreenGrantsIt) {
  const VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  SystemScreenRecordingAccess access(*connection);
  EXPECT_TRUE(access.isGranted());
}

TEST(SystemScreenRecordingAccessTest, AServerThatHangsIsNotWaitedFor) {
  VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  SystemScreenRecordingAccess access(*connection);
  desktop.signalServer(SIGSTOP);
  EXPECT_TRUE(access.isGranted());
  desktop.signalServer(SIGCONT);
}

TEST(SystemScreenRecordingAccessTest, AServerThatHasGoneGrantsNothing) {
  VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  SystemScreenRecordingAccess access(*connection);
  connection->breakOff();
  xcb_bell(connection->get(), 0);
  xcb_flush(connection->get());
  EXPECT_FALSE(access.isGranted());
  EXPECT_EQ(access.denial().onRequest, "The computer's desktop has ended. Start Orvel there again, then try again.");
}

}  // namespace
}  // namespace orvel
