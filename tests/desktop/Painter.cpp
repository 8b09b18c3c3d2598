#include "desktop/Painter.hpp"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orvel {
namespace {

constexpr int rowsOfOneRequest = 16;

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};
template <class Content>
using Answer = std::unique_ptr<Content, FreeMemory>;

std::uint16_t channel(std::uint32_t colour, int place) {
  return static_cast<std::uint16_t>((colour >> (8 * place) & 0xff) * 0x101);
}

}  // namespace

Painter::Painter(const std::string& display, std::uint32_t colour)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_) != 0) {
    xcb_disconnect(connection_);
    throw std::runtime_error("no X server at " + display);
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  window_ = xcb_generate_id(connection_);
  constexpr std::uint16_t large = 8192;
  const std::array<std::uint32_t, 2> values{colour, 1};
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen_->root, 0, 0, large, large, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                    values.data());
  xcb_map_window(connection_, window_);
  pen_ = xcb_generate_id(connection_);
  xcb_create_gc(connection_, pen_, window_, 0, nullptr);
  sync();
}

Painter::~Painter() {
  xcb_disconnect(connection_);
}

void Painter::fill(int x, int y, int width, int height, std::uint32_t colour) {
  xcb_change_gc(connection_, pen_, XCB_GC_FOREGROUND, &colour);
  const xcb_rectangle_t rectangle{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                  static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
  xcb_poly_fill_rectangle(connection_, window_, pen_, 1, &rectangle);
  sync();
}

void Painter::show(const Picture& picture, int x, int y) {
  for (int row = 0; row < picture.height; row += rowsOfOneRequest) {
    const int rows = std::min(rowsOfOneRequest, picture.height - row);
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, pen_, static_cast<std::uint16_t>(picture.width),
                  static_cast<std::uint16_t>(rows), static_cast<std::int16_t>(x), static_cast<std::int16_t>(y + row), 0,
                  screen_->root_depth, static_cast<std::uint32_t>(4 * picture.width * rows),
                  picture.buffer().bytes + picture.buffer().bytesPerRow * static_cast<std::size_t>(row));
  }
  sync();
}

Picture Painter::screen() {
  const auto geometryAsked = xcb_get_geometry(connection_, screen_->root);
  const Answer<xcb_get_geometry_reply_t> size{xcb_get_geometry_reply(connection_, geometryAsked, nullptr)};
  if (!size) throw std::runtime_error("the server has gone");
  const auto asked = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, 0, 0, size->width,
                                   size->height, ~std::uint32_t{0});
  const Answer<xcb_get_image_reply_t> image{xcb_get_image_reply(connection_, asked, nullptr)};
  if (!image) throw std::runtime_error("the server has gone");
  return Picture(
      {xcb_get_image_data(image.get()), 4 * static_cast<std::size_t>(size->width), size->width, size->height});
}

void Painter::movePointer(int x, int y) {
  xcb_test_fake_input(connection_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, screen_->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
  sync();
}

void Painter::warpPointer(int x, int y) {
  xcb_warp_pointer(connection_, XCB_NONE, screen_->root, 0, 0, 0, 0, static_cast<std::int16_t>(x),
                   static_cast<std::int16_t>(y));
  sync();
}

void Painter::setCursor(int width, int height, std::uint32_t colour, int hotSpot) {
  const auto shape = xcb_generate_id(connection_), pen = xcb_generate_id(connection_),
             cursor = xcb_generate_id(connection_);
  xcb_create_pixmap(connection_, 1, shape, screen_->root, static_cast<std::uint16_t>(width),
                    static_cast<std::uint16_t>(height));
  const std::uint32_t set = 1;
  xcb_create_gc(connection_, pen, shape, XCB_GC_FOREGROUND, &set);
  const xcb_rectangle_t whole{0, 0, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
  xcb_poly_fill_rectangle(connection_, shape, pen, 1, &whole);
  const auto red = channel(colour, 2), green = channel(colour, 1), blue = channel(colour, 0);
  xcb_create_cursor(connection_, cursor, shape, shape, red, green, blue, red, green, blue,
                    static_cast<std::uint16_t>(hotSpot), static_cast<std::uint16_t>(hotSpot));
  xcb_change_window_attributes(connection_, window_, XCB_CW_CURSOR, &cursor);
  sync();
}

void Painter::sync() {
  const auto asked = xcb_get_input_focus(connection_);
  const Answer<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(connection_, asked, nullptr)};
  if (!reply) throw std::runtime_error("the server has gone");
}

}  // namespace orvel
