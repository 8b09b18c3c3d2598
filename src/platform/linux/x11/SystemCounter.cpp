#include "platform/linux/x11/SystemCounter.hpp"

#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {

xcb_sync_counter_t systemCounter(const X11Connection& connection, std::string_view name) {
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
    const std::string_view found(reinterpret_cast<const char*>(&counters.data->name_len + 1), counters.data->name_len);
    if (found == name) return counters.data->counter;
  }
  return XCB_NONE;
}

}  // namespace orvel
