#include "desktop/VirtualDesktop.hpp"
#include "platform/linux/x11/X11Access.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <gtest/gtest.h>

#include <csignal>

namespace orvel {
namespace {

TEST(X11ScreenRecordingAccessTest, AServerThatShowsItsScreenGrantsIt) {
  const VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  X11ScreenRecordingAccess access(*connection);
  EXPECT_TRUE(access.isGranted());
}

TEST(X11ScreenRecordingAccessTest, AServerThatHangsIsNotWaitedFor) {
  VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  X11ScreenRecordingAccess access(*connection);
  desktop.signalServer(SIGSTOP);
  EXPECT_TRUE(access.isGranted());
  desktop.signalServer(SIGCONT);
}

TEST(X11ScreenRecordingAccessTest, AServerThatHasGoneGrantsNothing) {
  VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  X11ScreenRecordingAccess access(*connection);
  connection->shutDown();
  xcb_bell(connection->get(), 0);
  xcb_flush(connection->get());
  EXPECT_FALSE(access.isGranted());
  EXPECT_EQ(access.denial().onRequest, "The computer's desktop has ended. Start Orvel there again, then try again.");
}

}  // namespace
}  // namespace orvel
