#include "platform/linux/x11/X11Extensions.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr std::pair<std::uint16_t, std::uint16_t> neededInputVersion{2, 1};

}  // namespace

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

std::optional<std::uint8_t> rawInputOpcode(const X11Connection& connection) {
  const auto* input = connection.extension(xcb_input_id);
  if (input == nullptr) return std::nullopt;
  const auto asked = xcb_input_xi_query_version(connection.get(), neededInputVersion.first, neededInputVersion.second);
  const auto version = awaitReply(connection, xcb_input_xi_query_version_reply, asked);
  if (!version || std::pair(version->major_version, version->minor_version) < neededInputVersion) return std::nullopt;
  return input->major_opcode;
}

void selectRawInput(const X11Connection& connection, std::uint32_t events) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t events;
  } const selection{.head = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1}, .events = events};
  xcb_input_xi_select_events(connection.get(), connection.root(), 1, &selection.head);
}

}  // namespace orvel
