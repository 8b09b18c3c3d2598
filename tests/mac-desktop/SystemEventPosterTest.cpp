#include "base/Clock.hpp"
#include "platform/macos/SystemDisplays.hpp"
#include "platform/macos/SystemEventPoster.hpp"
#include "platform/macos/SystemTrustCheck.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace orvel {
namespace {

bool isNear(const std::optional<Point>& place, Point wanted) {
  return place && std::abs(place->x - wanted.x) < 1 && std::abs(place->y - wanted.y) < 1;
}

TEST(SystemEventPoster, MovesThePointer) {
  if (!SystemTrustCheck().isTrusted()) GTEST_SKIP() << "needs the permission Accessibility";
  const Point wanted = SystemDisplays().layout()->main.centre();
  const SystemClock clock;
  SystemEventPoster poster(clock);
  ASSERT_TRUE(poster.post(MouseEvent{.position = wanted}));
  poster.flush();
  for (int tries = 0; tries < 100 && !isNear(poster.pointerLocation(), wanted); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_TRUE(isNear(poster.pointerLocation(), wanted));
}

}  // namespace
}  // namespace orvel
