#include "platform/linux/capture/PointerMotion.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

#include <utility>

namespace orvel {
namespace {

// The first version that tells of motion also while another program has grabbed the pointer.
constexpr std::pair<std::uint16_t, std::uint16_t> neededVersion{2, 1};

}  // namespace

std::unique_ptr<PointerMotion> PointerMotion::find(const X11Connection& connection) {
  const auto* input = connection.extension(xcb_input_id);
  if (input == nullptr) return nullptr;
  const auto asked = xcb_input_xi_query_version(connection.get(), neededVersion.first, neededVersion.second);
  const X11Answer<xcb_input_xi_query_version_reply_t> version{
      xcb_input_xi_query_version_reply(connection.get(), asked, nullptr)};
  if (!version || std::pair(version->major_version, version->minor_version) < neededVersion) return nullptr;
  return std::unique_ptr<PointerMotion>(new PointerMotion(connection, input->major_opcode));
}

PointerMotion::PointerMotion(const X11Connection& connection, std::uint8_t opcode)
    : connection_(connection), opcode_(opcode) {}

void PointerMotion::tell(bool wanted) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t events;
  } const selection{.head = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
                    .events = wanted ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0};
  xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &selection.head);
}

bool PointerMotion::tellsOfMotion(const xcb_generic_event_t& event) const {
  if ((event.response_type & x11EventTypeMask) != XCB_GE_GENERIC) return false;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  return generic.extension == opcode_ && generic.event_type == XCB_INPUT_RAW_MOTION;
}

}  // namespace orvel
