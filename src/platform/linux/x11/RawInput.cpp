#include "platform/linux/x11/RawInput.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

#include <utility>

namespace orvel {
namespace {

constexpr std::pair<std::uint16_t, std::uint16_t> neededVersion{2, 1};

}  // namespace

std::optional<std::uint8_t> rawInputOpcode(const X11Connection& connection) {
  const auto* input = connection.extension(xcb_input_id);
  if (input == nullptr) return std::nullopt;
  const auto asked = xcb_input_xi_query_version(connection.get(), neededVersion.first, neededVersion.second);
  const auto version = awaitReply(connection, xcb_input_xi_query_version_reply, asked);
  if (!version || std::pair(version->major_version, version->minor_version) < neededVersion) return std::nullopt;
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
