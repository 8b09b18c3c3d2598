#include "platform/linux/x11/ServerTime.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <string_view>

namespace orvel {
namespace {

constexpr std::string_view clockName = "SERVERTIME";

xcb_sync_counter_t findClock(const X11Connection& connection) {
  if (connection.extension(xcb_sync_id) == nullptr) return XCB_NONE;
  const auto greeted = xcb_sync_initialize(connection.get(), XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION);
  const auto asked = xcb_sync_list_system_counters(connection.get());
  const X11Answer<xcb_sync_initialize_reply_t> version{xcb_sync_initialize_reply(connection.get(), greeted, nullptr)};
  const X11Answer<xcb_sync_list_system_counters_reply_t> reply{
      xcb_sync_list_system_counters_reply(connection.get(), asked, nullptr)};
  if (!version || !reply) return XCB_NONE;
  auto counters = xcb_sync_list_system_counters_counters_iterator(reply.get());
  for (; counters.rem > 0; xcb_sync_systemcounter_next(&counters)) {
    // The name stands right behind its length; the library looks for it two bytes later.
    const std::string_view name(reinterpret_cast<const char*>(&counters.data->name_len + 1), counters.data->name_len);
    if (name == clockName) return counters.data->counter;
  }
  return XCB_NONE;
}

}  // namespace

ServerTime::ServerTime(const X11Connection& connection) : connection_(connection), counter_(findClock(connection)) {}

xcb_timestamp_t ServerTime::now() const {
  if (counter_ == XCB_NONE) return XCB_CURRENT_TIME;
  const X11Answer<xcb_sync_query_counter_reply_t> reply{
      xcb_sync_query_counter_reply(connection_.get(), xcb_sync_query_counter(connection_.get(), counter_), nullptr)};
  // Timestamps are the lower half of it.
  return reply ? reply->counter_value.lo : xcb_timestamp_t{XCB_CURRENT_TIME};
}

}  // namespace orvel
