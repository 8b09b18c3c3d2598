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
  EXPECT_FALSE(access.request()) << "there is nobody to ask";
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
}

}  // namespace
}  // namespace orvel
