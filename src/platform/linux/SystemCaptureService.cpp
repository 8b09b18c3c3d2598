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
  newest_.withLock([&](std::weak_ptr<X11Connection>& newest) { newest = connection; });
  auto layout = MonitorList(*connection).ask();
  if (!layout) return silence();
  return std::make_unique<ScreenContent>(std::move(connection), *std::move(layout));
}

void SystemCaptureService::giveUp() {
  const auto newest = newest_.withLock([](const std::weak_ptr<X11Connection>& weak) { return weak.lock(); });
  if (newest) newest->breakOff();
}

}  // namespace orvel
