#include "platform/linux/capture/DamageWatch.hpp"

#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {
namespace {

constexpr std::uint32_t firstFixesWithRegions = 2;

bool hasRegions(const X11Connection& connection) {
  if (connection.extension(xcb_xfixes_id) == nullptr) return false;
  const auto asked = xcb_xfixes_query_version(connection.get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
  const X11Answer<xcb_xfixes_query_version_reply_t> version{
      xcb_xfixes_query_version_reply(connection.get(), asked, nullptr)};
  return version && version->major_version >= firstFixesWithRegions;
}

xcb_rectangle_t rectangleOf(const PixelRect& area) {
  return {static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
          static_cast<std::uint16_t>(area.height)};
}

}  // namespace

std::unique_ptr<DamageWatch> DamageWatch::start(const X11Connection& connection) {
  const auto* damage = connection.extension(xcb_damage_id);
  if (damage == nullptr || !hasRegions(connection)) return nullptr;
  const auto asked = xcb_damage_query_version(connection.get(), XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION);
  const X11Answer<xcb_damage_query_version_reply_t> version{
      xcb_damage_query_version_reply(connection.get(), asked, nullptr)};
  if (!version) return nullptr;
  return std::unique_ptr<DamageWatch>(new DamageWatch(connection, damage->first_event));
}

DamageWatch::DamageWatch(const X11Connection& connection, std::uint8_t firstEvent)
    : connection_(connection),
      firstEvent_(firstEvent),
      damage_(xcb_generate_id(connection.get())),
      drawn_(xcb_generate_id(connection.get())),
      area_(xcb_generate_id(connection.get())) {
  xcb_damage_create(connection.get(), damage_, connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
  xcb_xfixes_create_region(connection.get(), drawn_, 0, nullptr);
  xcb_xfixes_create_region(connection.get(), area_, 0, nullptr);
}

bool DamageWatch::tellsOfDamage(const xcb_generic_event_t& event) const {
  return (event.response_type & x11EventTypeMask) == firstEvent_ + XCB_DAMAGE_NOTIFY;
}

PixelRect DamageWatch::take(const PixelRect& area) {
  const xcb_rectangle_t rectangle = rectangleOf(area);
  xcb_damage_subtract(connection_.get(), damage_, XCB_NONE, drawn_);
  xcb_xfixes_set_region(connection_.get(), area_, 1, &rectangle);
  xcb_xfixes_intersect_region(connection_.get(), drawn_, area_, drawn_);
  // A region may have thousands of parts, its extents have one.
  xcb_xfixes_region_extents(connection_.get(), drawn_, drawn_);
  const auto asked = xcb_xfixes_fetch_region(connection_.get(), drawn_);
  const X11Answer<xcb_xfixes_fetch_region_reply_t> reply{
      xcb_xfixes_fetch_region_reply(connection_.get(), asked, nullptr)};
  if (!reply) return {};
  return {reply->extents.x, reply->extents.y, reply->extents.width, reply->extents.height};
}

}  // namespace orvel
