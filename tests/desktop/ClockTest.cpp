#include "desktop/VirtualDesktop.hpp"
#include "tools/TimeStrip.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvel {
namespace {

using phone::TimeStrip;
using phone::WallTime;
using std::chrono::milliseconds;
using testing::HasSubstr;

WallTime now() {
  return std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
}

/// Takes pictures of a desktop's screen.
class Camera {
 public:
  using Pixels = std::vector<std::uint8_t>;

  explicit Camera(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {}

  /// How bright each pixel is, or at least how green.
  Pixels photograph() const {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
    const auto asked = xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0,
                                     VirtualDesktop::width, VirtualDesktop::height, ~0u);
    const std::unique_ptr<xcb_get_image_reply_t, void (*)(void*)> image(
        xcb_get_image_reply(connection_.get(), asked, nullptr), std::free);
    Pixels pixels(std::size_t{VirtualDesktop::width} * VirtualDesktop::height);
    if (!image) return pixels;
    for (std::size_t at = 0; at < pixels.size(); ++at) pixels[at] = xcb_get_image_data(image.get())[4 * at + 1];
    return pixels;
  }

 private:
  const std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> connection_;
};

std::optional<WallTime> timeIn(const Camera::Pixels& picture) {
  return TimeStrip::find({picture, VirtualDesktop::width, VirtualDesktop::height});
}

struct ClockTest : testing::Test {
  ChildProcess::Program clock(const std::vector<std::string>& options) const {
    std::vector<std::string> command{ORVEL_CLOCK_PROGRAM};
    command.insert(command.end(), options.begin(), options.end());
    return {.command = command, .environment = desktop.environment()};
  }

  /// A picture in which the clock can be read.
  Camera::Pixels pictureWithTime() const {
    const Deadline deadline(timeout);
    auto picture = camera.photograph();
    while (!timeIn(picture) && deadline.left() > Milliseconds(0)) picture = camera.photograph();
    return picture;
  }

  VirtualDesktop desktop;
  Camera camera{desktop.display()};
};

TEST_F(ClockTest, ShowsTheTimeWhereItIsTold) {
  ChildProcess program(clock({"--geometry", "480x300+641+397"}));
  const Deadline deadline(timeout);
  Camera::Pixels picture;
  milliseconds age = timeout;
  // A busy computer may keep it waiting now and then.
  while (abs(age) > milliseconds(100) && deadline.left() > Milliseconds(0)) {
    const auto before = now();
    picture = camera.photograph();
    age = before - timeIn(picture).value_or(WallTime());
  }
  EXPECT_LE(abs(age), milliseconds(100)) << program.output();
  EXPECT_EQ(picture[std::size_t{396} * VirtualDesktop::width + 641], 0);
  EXPECT_EQ(picture[std::size_t{397} * VirtualDesktop::width + 641], 255);
}

TEST_F(ClockTest, GoesOn) {
  ChildProcess program(clock({}));
  const auto first = timeIn(pictureWithTime());
  ASSERT_TRUE(first) << program.output();
  const Deadline deadline(timeout);
  auto later = first;
  while (later == first && deadline.left() > Milliseconds(0)) later = timeIn(pictureWithTime());
  ASSERT_TRUE(later);
  EXPECT_GT(*later, *first);
}

TEST_F(ClockTest, SomethingMovesWhereThereShallBeNoise) {
  ChildProcess program(clock({"--geometry", "480x300+0+0", "--noise", "0.5"}));
  const auto noiseIn = [](const Camera::Pixels& picture) {
    Camera::Pixels noise;
    for (int y = 150; y < 300; ++y) {
      const auto row = picture.begin() + std::ptrdiff_t{y} * VirtualDesktop::width;
      noise.insert(noise.end(), row, row + 480);
    }
    return noise;
  };
  const auto first = noiseIn(pictureWithTime());
  const Deadline deadline(timeout);
  auto later = first;
  while (later == first && deadline.left() > Milliseconds(0)) later = noiseIn(pictureWithTime());
  EXPECT_NE(later, first);
}

TEST_F(ClockTest, EndsInTime) {
  ChildProcess program(clock({"--seconds", "0.1", "--rate", "30"}));
  EXPECT_EQ(program.waitForExit(), 0);
}

TEST_F(ClockTest, NoticesThatTheServerIsGone) {
  ChildProcess program(clock({}));
  ASSERT_TRUE(timeIn(pictureWithTime()));
  desktop.killServer();
  EXPECT_EQ(program.waitForExit(), 1);
  EXPECT_THAT(program.output(), HasSubstr("X server has gone"));
}

TEST_F(ClockTest, SaysThatThereIsNoServer) {
  auto program = clock({});
  program.environment["DISPLAY"] = std::nullopt;
  ChildProcess without(program);
  EXPECT_EQ(without.waitForExit(), 1);
  EXPECT_THAT(without.output(), HasSubstr("there is no X server"));
}

}  // namespace
}  // namespace orvel
