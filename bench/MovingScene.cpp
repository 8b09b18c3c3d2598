#include "bench/MovingScene.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <stdexcept>

namespace orvel::bench {
namespace {

constexpr std::chrono::nanoseconds stepTime{std::nano::den / 60};
constexpr int rowsOfOneRequest = 16;

struct Place {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

constexpr Place filmPlace{60, 120, 1280, 720};
constexpr Place textPlace{1380, 60, 480, 960};
constexpr int filmMarginX = 200;
constexpr int filmMarginY = 120;
constexpr int stepsOfOneRound = 300;  // of the camera, five seconds
constexpr int textStep = 3;
constexpr int textLength = 3000;

xcb_connection_t* connectTo(const std::string& display) {
  xcb_connection_t* const connection = xcb_connect(display.c_str(), nullptr);
  if (xcb_connection_has_error(connection) == 0) return connection;
  xcb_disconnect(connection);
  throw std::runtime_error("no X server at " + display);
}

std::int16_t coordinate(int value) {
  return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value) {
  return static_cast<std::uint16_t>(value);
}

/// A photograph of a town by the water: its many small houses are the detail that a soft sky lacks.
Picture town(int width, int height) {
  constexpr int houses = 5000;
  constexpr int smallestHouse = 4;
  constexpr int largestHouse = 32;
  std::mt19937 random(5);
  const auto number = [&](int least, int most) {
    return least + static_cast<int>(random() % static_cast<unsigned>(most - least));
  };
  Picture picture = photograph(width, height);
  for (int house = 0; house < houses; ++house) {
    const int x = number(0, width);
    const int y = number(0, height);
    const int houseWidth = number(smallestHouse, largestHouse);
    const int houseHeight = number(smallestHouse, largestHouse);
    picture.fill(x, y, houseWidth, houseHeight, 0x202020 + (random() & 0x7f7f7f));
  }
  return picture;
}

int swing(int margin, double angle) {
  return static_cast<int>(std::lround(margin * (1 + std::sin(angle))));
}

}  // namespace

MovingScene::MovingScene(const FullHDDesktop& desktop)
    : connection_(connectTo(desktop.display())),
      screen_(*xcb_setup_roots_iterator(xcb_get_setup(connection_)).data),
      window_(xcb_generate_id(connection_)),
      pen_(xcb_generate_id(connection_)),
      film_(xcb_generate_id(connection_)),
      text_(xcb_generate_id(connection_)) {
  openWindow();
  prepare(film_, town(filmPlace.width + 2 * filmMarginX, filmPlace.height + 2 * filmMarginY));
  prepare(text_, pageOfText(textPlace.width, textLength));
  thread_ = std::jthread([this](const std::stop_token& stop) { move(stop); });
}

MovingScene::~MovingScene() {
  thread_ = {};
  xcb_disconnect(connection_);
}

void MovingScene::openWindow() {
  constexpr std::uint32_t desktopBlue = 0x305070;
  const std::array<std::uint32_t, 2> values{desktopBlue, 1};
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen_.root, 0, 0, FullHDDesktop::width,
                    FullHDDesktop::height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
  xcb_map_window(connection_, window_);
  const std::uint32_t silent = 0;
  xcb_create_gc(connection_, pen_, window_, XCB_GC_GRAPHICS_EXPOSURES, &silent);
}

void MovingScene::prepare(xcb_pixmap_t pixmap, const Picture& picture) {
  xcb_create_pixmap(connection_, screen_.root_depth, pixmap, window_, length(picture.width), length(picture.height));
  const PixelBuffer pixels = picture.buffer();
  for (int row = 0; row < picture.height; row += rowsOfOneRequest) {
    const int rows = std::min(rowsOfOneRequest, picture.height - row);
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, pen_, length(picture.width), length(rows), 0,
                  coordinate(row), 0, screen_.root_depth,
                  static_cast<std::uint32_t>(pixels.bytesPerRow * static_cast<std::size_t>(rows)),
                  pixels.bytes + pixels.bytesPerRow * static_cast<std::size_t>(row));
  }
}

void MovingScene::move(const std::stop_token& stop) {
  auto due = std::chrono::steady_clock::now();
  for (int step = 0; !stop.stop_requested(); ++step) {
    show(step);
    due += stepTime;
    std::this_thread::sleep_until(due);
  }
}

void MovingScene::show(int step) {
  const double angle = 2 * std::numbers::pi * step / stepsOfOneRound;
  xcb_copy_area(connection_, film_, window_, pen_, coordinate(swing(filmMarginX, angle)),
                coordinate(swing(filmMarginY, 2 * angle)), filmPlace.x, filmPlace.y, filmPlace.width, filmPlace.height);
  xcb_copy_area(connection_, text_, window_, pen_, 0, coordinate(step * textStep % (textLength - textPlace.height)),
                textPlace.x, textPlace.y, textPlace.width, textPlace.height);
  xcb_flush(connection_);
}

}  // namespace orvel::bench
