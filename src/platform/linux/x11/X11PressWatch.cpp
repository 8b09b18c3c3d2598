#include "platform/linux/x11/X11PressWatch.hpp"

#include "platform/linux/MainThreadCall.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Extensions.hpp"

#include <xcb/xinput.h>

#include <utility>

namespace orvel {

X11PressWatch::X11PressWatch(const X11Connection& connection)
    : connection_(connection),
      opcode_(rawInputOpcode(connection).value_or(0)),
      call_(std::make_shared<MainThreadCall>([this] {
        if (const auto pressed = pressed_) pressed();
      })) {}

X11PressWatch::~X11PressWatch() {
  call_->cancel();
}

void X11PressWatch::begin(std::function<void()> pressed) {
  pressed_ = std::move(pressed);
  select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
}

void X11PressWatch::end() {
  pressed_ = {};
  select(0);
}

void X11PressWatch::select(std::uint32_t events) const {
  if (opcode_ == 0) return;
  selectRawInput(connection_, events);
  xcb_flush(connection_.get());
}

void X11PressWatch::handle(const xcb_generic_event_t& event) const {
  if ((event.response_type & x11EventTypeMask) != XCB_GE_GENERIC) return;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (opcode_ != 0 && generic.extension == opcode_ && generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS) call_->ask();
}

}  // namespace orvel
