#include "desktop/Screenshot.hpp"

#include <xcb/xcb.h>

#include <QImage>
#include <cstdlib>
#include <memory>

namespace orvel {
namespace {

struct Free {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

QImage imageOf(xcb_connection_t* connection) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  const auto asked = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0, screen->width_in_pixels,
                                   screen->height_in_pixels, ~0u);
  const std::unique_ptr<xcb_get_image_reply_t, Free> reply(xcb_get_image_reply(connection, asked, nullptr));
  if (!reply) return {};
  // A copy, for the memory of the reply goes.
  return QImage(xcb_get_image_data(reply.get()), screen->width_in_pixels, screen->height_in_pixels,
                QImage::Format_RGB32)
      .copy();
}

}  // namespace

bool writeScreenshot(const std::string& display, const std::string& path) {
  xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
  const QImage image = xcb_connection_has_error(connection) == 0 ? imageOf(connection) : QImage();
  xcb_disconnect(connection);
  return !image.isNull() && image.save(QString::fromStdString(path), "PNG");
}

}  // namespace orvel
