#include "platform/linux/capture/CursorWatch.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xfixes.h>

namespace orvel {

std::unique_ptr<CursorWatch> CursorWatch::start(const X11Connection& connection) {
  const auto* fixes = connection.extension(xcb_xfixes_id);
  if (fixes == nullptr) return nullptr;
  // The server refuses everything to those who have not named a version.
  const auto asked = xcb_xfixes_query_version(connection.get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
  const X11Answer<xcb_xfixes_query_version_reply_t> version{
      xcb_xfixes_query_version_reply(connection.get(), asked, nullptr)};
  if (!version) return nullptr;
  xcb_xfixes_select_cursor_input(connection.get(), connection.root(), XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
  return std::unique_ptr<CursorWatch>(new CursorWatch(connection, fixes->first_event));
}

CursorWatch::CursorWatch(const X11Connection& connection, std::uint8_t firstEvent)
    : connection_(connection), firstEvent_(firstEvent) {}

bool CursorWatch::tellsOfChange(const xcb_generic_event_t& event) const {
  return (event.response_type & x11EventTypeMask) == firstEvent_ + XCB_XFIXES_CURSOR_NOTIFY;
}

const Cursor& CursorWatch::ask() {
  if (!shapeIsKnown_) askShape();
  askPlace();
  return cursor_;
}

void CursorWatch::askPlace() {
  const auto asked = xcb_query_pointer(connection_.get(), connection_.root());
  const X11Answer<xcb_query_pointer_reply_t> pointer{xcb_query_pointer_reply(connection_.get(), asked, nullptr)};
  if (!pointer) return;
  cursor_.x = pointer->root_x;
  cursor_.y = pointer->root_y;
  // A server may have several screens, of which the cursor is on one.
  cursor_.shape = pointer->same_screen ? shape_ : nullptr;
}

void CursorWatch::askShape() {
  const auto asked = xcb_xfixes_get_cursor_image(connection_.get());
  const X11Answer<xcb_xfixes_get_cursor_image_reply_t> image{
      xcb_xfixes_get_cursor_image_reply(connection_.get(), asked, nullptr)};
  shapeIsKnown_ = true;
  shape_.reset();
  if (!image) return;
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
  const int count = xcb_xfixes_get_cursor_image_cursor_image_length(image.get());
  shape_ = std::make_shared<const CursorShape>(CursorShape{.width = image->width,
                                                           .height = image->height,
                                                           .hotX = image->xhot,
                                                           .hotY = image->yhot,
                                                           .pixels = {pixels, pixels + count}});
}

}  // namespace orvel
