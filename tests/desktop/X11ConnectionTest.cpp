#include "desktop/LeafFixture.hpp"
#include "desktop/StoppedServer.hpp"

#include <chrono>
#include <csignal>

namespace orvel {
namespace {

TEST(X11ConnectionTest, ThereIsNoneWithoutAServer) {
  EXPECT_EQ(X11Connection::open(":4095"), nullptr);
  EXPECT_EQ(X11Connection::open("not a display"), nullptr);
}

TEST(X11ConnectionTest, AScreenThatTheServerHasNotIsNone) {
  const VirtualDesktop desktop;
  EXPECT_EQ(X11Connection::open(desktop.display() + ".7"), nullptr);
}

TEST(X11ConnectionTest, TheDeathOfTheServerIsToldOfAndSurvived) {
  VirtualDesktop desktop;
  LeafSet leaves(desktop);
  ASSERT_TRUE(leaves.trust.isTrusted());
  const auto layout = leaves.displays.layout();
  desktop.killServer();
  EXPECT_TRUE(leaves.waitForEnd());
  EXPECT_FALSE(leaves.connection().isAlive());
  EXPECT_FALSE(leaves.trust.isTrusted());
  EXPECT_FALSE(leaves.events.post(MouseEvent{.position = Point{10, 10}}));
  EXPECT_FALSE(leaves.events.post(ScrollEvent{.wheel1 = 400}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = 0, .down = true}));
  EXPECT_EQ(leaves.events.pointerLocation(), std::nullopt);
  leaves.events.flush();
  EXPECT_EQ(leaves.displays.layout(), layout);
}

TEST(X11ConnectionTest, ABrokenPipeDoesNotEndTheProgram) {
  VirtualDesktop desktop;
  std::signal(SIGPIPE, SIG_DFL);
  const auto connection = X11Connection::open(desktop.display());
  ASSERT_NE(connection, nullptr);
  std::raise(SIGPIPE);
  desktop.killServer();
  xcb_bell(connection->get(), 0);
  xcb_flush(connection->get());
  EXPECT_FALSE(connection->isAlive());
}

TEST(X11ConnectionTest, StoppingIsNotAnEnd) {
  const VirtualDesktop desktop;
  const auto connection = X11Connection::open(desktop.display());
  ASSERT_NE(connection, nullptr);
  bool ended = false;
  ASSERT_TRUE(connection->listen({.event = [](const auto&) {}, .ended = [&] { ended = true; }}));
  const auto begin = std::chrono::steady_clock::now();
  connection->stopListening();
  connection->stopListening();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1))
      << "a server that lives is not waited for";
  EXPECT_FALSE(ended);
}

TEST(X11ConnectionTest, AServerThatHangsDoesNotHoldUpTheEnd) {
  VirtualDesktop desktop;
  auto leaves = std::make_unique<LeafSet>(desktop);
  ASSERT_TRUE(leaves->trust.isTrusted());
  const StoppedServer stopped(desktop);
  leaves->events.post(MouseEvent{.position = Point{10, 10}});
  leaves->events.flush();
  const auto end = std::async(std::launch::async, [&] { leaves.reset(); });
  const bool ended = end.wait_for(timeout) == std::future_status::ready;
  EXPECT_TRUE(ended);
  if (!ended) desktop.signalServer(SIGCONT);
}

TEST(X11ConnectionTest, RequestsThatTheServerRefusesHaveNoEffect) {
  const VirtualDesktop desktop;
  LeafSet leaves(desktop);
  for (int i = 0; i < 1000; ++i) xcb_destroy_window(leaves.connection().get(), 12345);
  EXPECT_TRUE(leaves.trust.isTrusted());
  EXPECT_TRUE(leaves.events.post(MouseEvent{.position = Point{10, 10}}));
}

}  // namespace
}  // namespace orvel
