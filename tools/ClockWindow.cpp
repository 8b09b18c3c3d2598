#include "tools/ClockWindow.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

namespace orvel::phone {
namespace {

// Small enough that a JPEG finds no rest, large enough that some of it is left when the screen is scaled down.
constexpr int noiseGrain = 2;
// How far the noise moves before it is where it was.
constexpr int noiseTravel = 240;
constexpr int noiseStep = 3;

std::uint16_t unsigned16(int number) {
  return static_cast<std::uint16_t>(number);
}
std::int16_t signed16(int number) {
  return static_cast<std::int16_t>(number);
}

xcb_rectangle_t square(int column, int row, int side) {
  return {signed16(column * side), signed16(row * side), unsigned16(side), unsigned16(side)};
}

}  // namespace

ClockWindow::ClockWindow(const ClockOptions& options)
    : options_(options), connection_(xcb_connect(nullptr, nullptr), xcb_disconnect) {}

bool ClockWindow::open() {
  if (xcb_connection_has_error(connection_.get()) != 0) return false;
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
  if (screen_->root_depth != 24) return false;
  makeWindow();
  black_ = makePen(screen_->black_pixel);
  white_ = makePen(screen_->white_pixel);
  strip_ = xcb_generate_id(connection_.get());
  const int block = options_.blockSize();
  xcb_create_pixmap(connection_.get(), screen_->root_depth, strip_, window_, unsigned16(TimeStrip::columns * block),
                    unsigned16(TimeStrip::rows * block));
  if (options_.noiseHeight() > 0) makeNoise();
  return isDrawn();
}

void ClockWindow::makeWindow() {
  window_ = xcb_generate_id(connection_.get());
  const std::array<std::uint32_t, 2> values = {screen_->white_pixel, 1};
  xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window_, screen_->root, signed16(options_.x),
                    signed16(options_.y), unsigned16(options_.width), unsigned16(options_.height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                    values.data());
  xcb_map_window(connection_.get(), window_);
}

xcb_gcontext_t ClockWindow::makePen(std::uint32_t colour) {
  const xcb_gcontext_t pen = xcb_generate_id(connection_.get());
  const std::array<std::uint32_t, 2> values = {colour, 0};
  xcb_create_gc(connection_.get(), pen, window_, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES, values.data());
  return pen;
}

/// Draws the noise once; it is the same each time.
void ClockWindow::makeNoise() {
  const int width = options_.width + noiseTravel;
  const int height = options_.noiseHeight();
  noise_ = xcb_generate_id(connection_.get());
  xcb_create_pixmap(connection_.get(), screen_->root_depth, noise_, window_, unsigned16(width), unsigned16(height));
  std::mt19937 random(1);
  std::vector<std::uint32_t> row(static_cast<std::size_t>(width));
  for (int y = 0; y < height; ++y) {
    if (y % noiseGrain == 0) {
      for (std::size_t x = 0; x < row.size(); ++x)
        row[x] = x % noiseGrain == 0 ? static_cast<std::uint32_t>(random()) : row[x - 1];
    }
    xcb_put_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, noise_, white_, unsigned16(width), 1, 0, signed16(y), 0,
                  screen_->root_depth, static_cast<std::uint32_t>(row.size() * sizeof row[0]),
                  reinterpret_cast<const std::uint8_t*>(row.data()));
  }
}

bool ClockWindow::show(WallTime time) {
  if (noise_ != 0) moveNoise();
  drawStrip(time);
  return isDrawn();
}

/// Draws aside and then copies, so that nobody ever sees half of a time.
void ClockWindow::drawStrip(WallTime time) {
  const TimeStrip strip(time);
  const int block = options_.blockSize();
  std::vector<xcb_rectangle_t> dark;
  for (int row = 0; row < TimeStrip::rows; ++row) {
    for (int column = 0; column < TimeStrip::columns; ++column) {
      if (strip.isDark(column, row)) dark.push_back(square(column, row, block));
    }
  }
  const xcb_rectangle_t whole{0, 0, unsigned16(TimeStrip::columns * block), unsigned16(TimeStrip::rows * block)};
  xcb_poly_fill_rectangle(connection_.get(), strip_, white_, 1, &whole);
  xcb_poly_fill_rectangle(connection_.get(), strip_, black_, static_cast<std::uint32_t>(dark.size()), dark.data());
  xcb_copy_area(connection_.get(), strip_, window_, white_, 0, 0, 0, 0, whole.width, whole.height);
}

void ClockWindow::moveNoise() {
  noiseOffset_ = (noiseOffset_ + noiseStep) % noiseTravel;
  const int height = options_.noiseHeight();
  xcb_copy_area(connection_.get(), noise_, window_, white_, signed16(noiseOffset_), 0, 0,
                signed16(options_.height - height), unsigned16(options_.width), unsigned16(height));
}

/// Waits until the server has done all that it was asked for: a clock that hurries ahead of it would show old times.
bool ClockWindow::isDrawn() {
  const std::unique_ptr<xcb_get_input_focus_reply_t, void (*)(void*)> answer(
      xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr), std::free);
  return answer != nullptr;
}

}  // namespace orvel::phone
