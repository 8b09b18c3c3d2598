#include "MacTest.hpp"
#include "frameworks/WindowServer.hpp"
#include "platform/macos/WindowServer.hpp"

namespace orvel {
namespace {

using WindowServerTest = MacTest;

TEST_F(WindowServerTest, IsThereWhereTheLoginHasASession) {
  fake::hasWindowServer() = true;
  EXPECT_TRUE(WindowServer::isThere());
  fake::hasWindowServer() = false;
  EXPECT_FALSE(WindowServer::isThere());
  fake::hasWindowServer() = true;
}

}  // namespace
}  // namespace orvel
