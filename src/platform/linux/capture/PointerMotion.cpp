#include "platform/linux/capture/PointerMotion.hpp"

#include "platform/linux/x11/SystemCounter.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

#include <utility>

namespace orvel {
namespace {

// The first version that tells of motion also while another program has grabbed the pointer.
constexpr std::pair<std::uint16_t, std::uint16_t> neededVersion{2, 1};

// The number is that of the first master pointer, which every server has.
constexpr const char* stillnessOfPointer = "DEVICEIDLETIME 2";

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
    : connection_(connection),
      opcode_(opcode),
      stillness_(systemCounter(connection, stillnessOfPointer)),
      alarm_(xcb_generate_id(connection.get())) {}

void PointerMotion::tell(bool wanted) {
  tellOfDevices(wanted);
  if (stillness_ != XCB_NONE) tellOfEndOfStillness(wanted);
}

void PointerMotion::tellOfDevices(bool wanted) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t events;
  } const selection{.head = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
                    .events = wanted ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0};
  xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &selection.head);
}

void PointerMotion::tellOfEndOfStillness(bool wanted) {
  if (!wanted) {
    xcb_sync_destroy_alarm(connection_.get(), alarm_);
    return;
  }
  const xcb_sync_create_alarm_value_list_t alarm{.counter = stillness_,
                                                 .valueType = XCB_SYNC_VALUETYPE_ABSOLUTE,
                                                 .value = {.hi = 0, .lo = 1},
                                                 .testType = XCB_SYNC_TESTTYPE_NEGATIVE_TRANSITION,
                                                 .delta = {},
                                                 .events = 1};
  xcb_sync_create_alarm_aux(connection_.get(), alarm_,
                            XCB_SYNC_CA_COUNTER | XCB_SYNC_CA_VALUE_TYPE | XCB_SYNC_CA_VALUE | XCB_SYNC_CA_TEST_TYPE |
                                XCB_SYNC_CA_DELTA | XCB_SYNC_CA_EVENTS,
                            &alarm);
}

bool PointerMotion::tellsOfMotion(const xcb_generic_event_t& event) const {
  const std::uint8_t type = event.response_type & x11EventTypeMask;
  if (type == XCB_GE_GENERIC) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return generic.extension == opcode_ && generic.event_type == XCB_INPUT_RAW_MOTION;
  }
  return stillness_ != XCB_NONE && type == connection_.extension(xcb_sync_id)->first_event + XCB_SYNC_ALARM_NOTIFY;
}

}  // namespace orvel
