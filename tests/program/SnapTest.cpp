#include "desktop/WidgetWindow.hpp"
#include "program/LoginFixture.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace orvel {
namespace {

struct SnapTest : LoginFixture {
  /// Puts the pointer there and waits until it is.
  bool point(Point place) {
    phone->sendFrame(phone::moveAbsoluteFrame(place.x / VirtualDesktop::width, place.y / VirtualDesktop::height));
    return waitForPointer(place);
  }

  bool waitForPointer(Point place, Milliseconds limit = timeout) {
    const auto isThere = [&] {
      const auto [x, y] = view.pointer();
      return std::abs(x - place.x) <= 1 && std::abs(y - place.y) <= 1;
    };
    return eventually(isThere, limit);
  }
};

TEST_F(SnapTest, ThePointerGlidesOntoTheButtonThatItIsNear) {
  ASSERT_TRUE(bus.waitForAccessibility()) << "the program switches it on";
  WidgetWindow window(bus, "gtk3");
  const Rect button = window.place("button");
  const Point beside{button.minX() + 5, button.minY() + 5};
  ASSERT_TRUE(point(beside));
  // Until the window is known on the bus, nothing is found there.
  EXPECT_TRUE(eventually([&] {
    phone->send({{"t", "snap"}});
    return waitForPointer(button.centre(), Milliseconds(500));
  }));
}

}  // namespace
}  // namespace orvel
