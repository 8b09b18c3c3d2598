#include "platform/linux/SystemCaptureService.hpp"

#include "platform/linux/capture/ScreenContent.hpp"
#include "platform/linux/x11/MonitorList.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <utility>

namespace orvel {
namespace {

CaptureFailure silence() {
  return {"The desktop does not answer."};
}

bool answers(const X11Connection& connection) {
  const auto asked = xcb_get_input_focus(connection.get());
  return X11Answer<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(connection.get(), asked, nullptr)) != nullptr;
}

}  // namespace

SystemCaptureService::SystemCaptureService(const X11Connection& connection, std::string display)
    : connection_(connection), display_(std::move(display)) {}

std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> SystemCaptureService::shareableContent() {
  // Nobody can part from a server that hangs while a connection is being made, so first one that can be broken off is
  // asked.
  if (!answers(connection_)) return silence();
  std::shared_ptr<X11Connection> connection = X11Connection::open(display_);
  if (!connection) return silence();
  const bool isTooLate = state_.withLock([&](State& state) {
    state.newest = connection;
    return state.hasGivenUp;
  });
  if (isTooLate) return silence();
  auto layout = MonitorList(*connection).ask();
  if (!layout) return silence();
  return std::make_unique<ScreenContent>(std::move(connection), *std::move(layout));
}

void SystemCaptureService::giveUp() {
  const auto newest = state_.withLock([](State& state) {
    state.hasGivenUp = true;
    return state.newest.lock();
  });
  if (newest) newest->breakOff();
}

}  // namespace orvel
