#include "platform/linux/x11/ServerTime.hpp"

#include "platform/linux/x11/SystemCounter.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {

ServerTime::ServerTime(const X11Connection& connection)
    : connection_(connection), counter_(systemCounter(connection, "SERVERTIME")) {}

xcb_timestamp_t ServerTime::now() const {
  if (counter_ == XCB_NONE) return XCB_CURRENT_TIME;
  const X11Answer<xcb_sync_query_counter_reply_t> reply{
      xcb_sync_query_counter_reply(connection_.get(), xcb_sync_query_counter(connection_.get(), counter_), nullptr)};
  // Timestamps are the lower half of it.
  return reply ? reply->counter_value.lo : xcb_timestamp_t{XCB_CURRENT_TIME};
}

}  // namespace orvel
