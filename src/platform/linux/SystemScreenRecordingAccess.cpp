#include "platform/linux/SystemScreenRecordingAccess.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace orvel {
namespace {

constexpr std::string_view guestName = "XWAYLAND";

bool showsPixels(const X11Connection& connection) {
  const auto asked =
      xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(), 0, 0, 1, 1, ~std::uint32_t{0});
  return X11Answer<xcb_get_image_reply_t>(xcb_get_image_reply(connection.get(), asked, nullptr)) != nullptr;
}

bool saysThatItIsGuest(const X11Connection& connection) {
  const auto asked = xcb_query_extension(connection.get(), guestName.size(), guestName.data());
  const X11Answer<xcb_query_extension_reply_t> reply{xcb_query_extension_reply(connection.get(), asked, nullptr)};
  return reply && reply->present;
}

bool isGuestOutput(const X11Connection& connection, xcb_randr_output_t output) {
  const auto asked = xcb_randr_get_output_info(connection.get(), output, XCB_CURRENT_TIME);
  const X11Answer<xcb_randr_get_output_info_reply_t> info{
      xcb_randr_get_output_info_reply(connection.get(), asked, nullptr)};
  if (!info) return false;
  const std::string_view name(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                              info->name_len);
  return name.starts_with(guestName);
}

/// Servers that do not say it yet name their outputs like that.
bool hasGuestOutputs(const X11Connection& connection) {
  if (connection.extension(xcb_randr_id) == nullptr) return false;
  const auto asked = xcb_randr_get_screen_resources_current(connection.get(), connection.root());
  const X11Answer<xcb_randr_get_screen_resources_current_reply_t> resources{
      xcb_randr_get_screen_resources_current_reply(connection.get(), asked, nullptr)};
  if (!resources) return false;
  const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs);
  return !outputs.empty() &&
         std::all_of(outputs.begin(), outputs.end(), [&](auto output) { return isGuestOutput(connection, output); });
}

}  // namespace

SystemScreenRecordingAccess::SystemScreenRecordingAccess(const X11Connection& connection)
    : connection_(connection),
      isShown_(showsPixels(connection) && !saysThatItIsGuest(connection) && !hasGuestOutputs(connection)) {}

bool SystemScreenRecordingAccess::isGranted() {
  return isShown_ && connection_.isAlive();
}

}  // namespace orvel
