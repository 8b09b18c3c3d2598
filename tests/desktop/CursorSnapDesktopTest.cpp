#include "base/Clock.hpp"
#include "base/WorkerThreads.hpp"
#include "desktop/AccessibleFixture.hpp"
#include "input/CursorSnap.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"

#include <chrono>
#include <cmath>
#include <csignal>
#include <memory>
#include <optional>
#include <semaphore>

namespace orvel {
namespace {

/// The real snap, on a thread of its own, between a real pointer and a real program.
struct CursorSnapDesktopTest : AccessibleFixture {
  CursorSnapDesktopTest() { permission.refresh(); }
  ~CursorSnapDesktopTest() override { workers.finish(); }

  /// The centre of a button 300 points wide, once its program reports it.
  Point wideButton(WidgetWindow& window) {
    std::optional<AccessibleElement> element;
    EXPECT_TRUE(eventually([&] {
      element = tree.elementAt(window.place("wide").centre());
      return element && element->role == "AXButton" && element->position && element->size;
    }));
    return element && element->size ? Rect{*element->position, *element->size}.centre() : Point{};
  }

  /// How far the pointer is from `centre` after a snap with it at so many points from there.
  double distanceAfterSnap(Point centre, double distance) {
    pointer.place({centre.x + distance, centre.y}, false);
    snap.settle();
    waitForSnap();
    return distanceTo(centre);
  }

  double distanceTo(Point centre) {
    const auto place = leaves.events.pointerLocation();
    EXPECT_TRUE(place);
    return place ? std::hypot(place->x - centre.x, place->y - centre.y) : -1;
  }

  void waitForSnap() {
    std::binary_semaphore ended{0};
    snapQueue->post([&] { ended.release(); });
    EXPECT_TRUE(ended.try_acquire_for(timeout));
  }

  SystemClock clock;
  WorkerThreads workers;
  std::unique_ptr<Executor> pointerQueue = workers.makeSerialQueue();
  std::unique_ptr<Executor> snapQueue = workers.makeSerialQueue();
  PermissionGate permission{leaves.trust};
  PointerDriver pointer{leaves.events, leaves.displays, clock, *pointerQueue};
  CursorSnap snap{{.clock = clock, .permission = permission, .pointer = pointer, .queue = *snapQueue, .tree = tree}};
};

TEST_F(CursorSnapDesktopTest, AButtonDrawsThePointerFromNearby) {
  WidgetWindow window(bus, "gtk3");
  const Point centre = wideButton(window);
  EXPECT_NEAR(distanceAfterSnap(centre, 2), 2, 0.8) << "already there";
  EXPECT_NEAR(distanceAfterSnap(centre, 3), 3, 0.8);
  for (const double near : {3.1, 50.0, 110.0, -110.0}) EXPECT_LE(distanceAfterSnap(centre, near), 0.8) << near;
  EXPECT_NEAR(distanceAfterSnap(centre, 111), 111, 0.8) << "too far";
}

TEST_F(CursorSnapDesktopTest, EveryToolkitsButtonsDo) {
  for (const char* toolkit : {"gtk4", "qt6"}) {
    WidgetWindow window(bus, toolkit);
    EXPECT_LE(distanceAfterSnap(wideButton(window), 60), 0.8) << toolkit;
  }
}

TEST_F(CursorSnapDesktopTest, ATextEntryDoesNot) {
  WidgetWindow window(bus, "gtk3");
  wideButton(window);
  EXPECT_NEAR(distanceAfterSnap(window.place("entry").centre(), 50), 50, 0.8);
}

TEST_F(CursorSnapDesktopTest, AProgramThatHangsHoldsNobodyUp) {
  WidgetWindow window(bus, "gtk3");
  const Point centre = wideButton(window);
  window.process().signal(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_NEAR(distanceAfterSnap(centre, 50), 50, 0.8);
  EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500));
  window.process().signal(SIGCONT);
  EXPECT_LE(distanceAfterSnap(wideButton(window), 50), 0.8);
}

TEST_F(CursorSnapDesktopTest, AWindowMayCloseUnderTheGlide) {
  WidgetWindow window(bus, "gtk3");
  const Point centre = wideButton(window);
  pointer.place({centre.x + 100, centre.y}, false);
  snap.settle();
  ASSERT_TRUE(eventually([&] { return distanceTo(centre) < 90; })) << "it does not glide";
  window.send("close");
  waitForSnap();
  EXPECT_LE(distanceTo(centre), 0.8);
  ASSERT_TRUE(window.process().waitForExit());
  EXPECT_NEAR(distanceAfterSnap(centre, 50), 50, 0.8) << "nothing is there any more";
}

}  // namespace
}  // namespace orvel
