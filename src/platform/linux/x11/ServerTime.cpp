#include "platform/linux/x11/ServerTime.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <string_view>

namespace orvel {

xcb_sync_counter_t systemCounter(const X11Connection& connection, std::string_view name) {
  if (connection.extension(xcb_sync_id) == nullptr) return XCB_NONE;
  const auto greeted = xcb_sync_initialize(connection.get(), XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION);
  const auto asked = xcb_sync_list_system_counters(connection.get());
  const auto version = awaitReply(connection, xcb_sync_initialize_reply, greeted);
  const auto reply = awaitReply(connection, xcb_sync_list_system_counters_reply, asked);
  if (!version || !reply) return XCB_NONE;
  auto counters = xcb_sync_list_system_counters_counters_iterator(reply.get());
  for (; counters.rem > 0; xcb_sync_systemcounter_next(&counters)) {
    // The name stands right behind its length; the library looks for it two bytes later.
    const std::string_view found(reinterpret_cast<const char*>(&counters.data->name_len + 1), counters.data->name_len);
    if (found == name) return counters.data->counter;
  }
  return XCB_NONE;
}

ServerTime::ServerTime(const X11Connection& connection)
    : connection_(connection), counter_(systemCounter(connection, "SERVERTIME")) {}

xcb_timestamp_t ServerTime::now() const {
  if (counter_ == XCB_NONE) return XCB_CURRENT_TIME;
  const auto reply =
      awaitReply(connection_, xcb_sync_query_counter_reply, xcb_sync_query_counter(connection_.get(), counter_));
  // Timestamps are the lower half of it.
  return reply ? reply->counter_value.lo : xcb_timestamp_t{XCB_CURRENT_TIME};
}

}  // namespace orvel
