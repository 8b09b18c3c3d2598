#include "platform/linux/capture/ScreenFormat.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <array>
#include <cstdint>

namespace orvel {
namespace {

struct Layout {
  std::uint8_t depth = 0;
  std::uint8_t bitsPerPixel = 0;
  std::array<std::uint32_t, 3> masks = {};  // red, green, blue

  friend bool operator==(const Layout&, const Layout&) = default;
};

constexpr Layout trueColour{24, 32, {0xff0000, 0x00ff00, 0x0000ff}};
constexpr Layout trueColourAndAlpha{32, 32, {0xff0000, 0x00ff00, 0x0000ff}};
constexpr Layout highColour{16, 16, {0xf800, 0x07e0, 0x001f}};

const xcb_screen_t* screenOf(const X11Connection& connection) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
  while (screens.rem > 0 && screens.data->root != connection.root()) xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data : nullptr;
}

std::uint8_t bitsPerPixelOf(const xcb_setup_t* setup, std::uint8_t depth) {
  for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0; xcb_format_next(&formats)) {
    if (formats.data->depth == depth) return formats.data->bits_per_pixel;
  }
  return 0;
}

std::array<std::uint32_t, 3> masksOf(const xcb_screen_t* screen) {
  for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem > 0; xcb_depth_next(&depths)) {
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0; xcb_visualtype_next(&visuals)) {
      const xcb_visualtype_t& visual = *visuals.data;
      if (visual.visual_id == screen->root_visual) return {visual.red_mask, visual.green_mask, visual.blue_mask};
    }
  }
  return {};
}

}  // namespace

std::optional<ScreenFormat> ScreenFormat::of(const X11Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const xcb_screen_t* screen = screenOf(connection);
  if (screen == nullptr || setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return std::nullopt;
  const Layout layout{screen->root_depth, bitsPerPixelOf(setup, screen->root_depth), masksOf(screen)};
  if (layout == trueColour || layout == trueColourAndAlpha) return ScreenFormat{Pixels::blueGreenRed};
  if (layout == highColour) return ScreenFormat{Pixels::rgb565};
  return std::nullopt;
}

}  // namespace orvel
