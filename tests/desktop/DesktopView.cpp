#include "desktop/DesktopView.hpp"

#include <QImage>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace orvel {
namespace {

constexpr std::uint32_t longestProperty = 1024;

struct Free {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

}  // namespace

std::vector<std::string> DesktopView::windowTitles() const {
  const std::string list = property(screen()->root, "_NET_CLIENT_LIST");
  std::vector<std::string> titles;
  for (std::size_t at = 0; at + sizeof(xcb_window_t) <= list.size(); at += sizeof(xcb_window_t)) {
    xcb_window_t window = XCB_WINDOW_NONE;
    list.copy(reinterpret_cast<char*>(&window), sizeof(window), at);
    titles.push_back(property(window, "_NET_WM_NAME"));
  }
  return titles;
}

std::string DesktopView::property(xcb_window_t window, const std::string& name) const {
  const auto atomAsked = xcb_intern_atom(connection_, true, static_cast<std::uint16_t>(name.size()), name.c_str());
  const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(connection_, atomAsked, nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return {};
  const auto asked = xcb_get_property(connection_, false, window, atom->atom, XCB_ATOM_ANY, 0, longestProperty);
  const std::unique_ptr<xcb_get_property_reply_t, Free> value(xcb_get_property_reply(connection_, asked, nullptr));
  if (!value) return {};
  const auto* bytes = static_cast<const char*>(xcb_get_property_value(value.get()));
  return {bytes, static_cast<std::size_t>(xcb_get_property_value_length(value.get()))};
}

std::pair<int, int> DesktopView::pointer() const {
  const auto asked = xcb_query_pointer(connection_, screen()->root);
  const std::unique_ptr<xcb_query_pointer_reply_t, Free> reply(xcb_query_pointer_reply(connection_, asked, nullptr));
  return reply ? std::pair<int, int>(reply->root_x, reply->root_y) : std::pair(-1, -1);
}

Picture DesktopView::picture() const {
  const int width = screen()->width_in_pixels;
  const int height = screen()->height_in_pixels;
  const auto asked = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen()->root, 0, 0,
                                   screen()->width_in_pixels, screen()->height_in_pixels, ~0u);
  const std::unique_ptr<xcb_get_image_reply_t, Free> reply(xcb_get_image_reply(connection_, asked, nullptr));
  if (!reply) return {};
  return Picture(PixelBuffer{.bytes = xcb_get_image_data(reply.get()),
                             .bytesPerRow = 4 * static_cast<std::size_t>(width),
                             .width = width,
                             .height = height});
}

bool DesktopView::photograph(const std::string& path) const {
  const Picture shown = picture();
  const PixelBuffer pixels = shown.buffer();
  const QImage image(pixels.bytes, pixels.width, pixels.height, QImage::Format_RGB32);
  return image.save(QString::fromStdString(path), "PNG");
}

}  // namespace orvel
