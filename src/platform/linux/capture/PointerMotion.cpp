#include "platform/linux/capture/PointerMotion.hpp"

#include "platform/linux/x11/RawInput.hpp"
#include "platform/linux/x11/SystemCounter.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

namespace orvel {
namespace {

// The number is that of the first master pointer, which every server has.
constexpr const char* stillnessOfPointer = "DEVICEIDLETIME 2";

}  // namespace

std::unique_ptr<PointerMotion> PointerMotion::find(const X11Connection& connection) {
  const auto opcode = rawInputOpcode(connection);
  if (!opcode) return nullptr;
  return std::unique_ptr<PointerMotion>(new PointerMotion(connection, *opcode));
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
  selectRawInput(connection_, wanted ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0);
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
