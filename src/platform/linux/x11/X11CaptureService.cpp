#include "platform/linux/x11/X11CaptureService.hpp"

#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/capture/ScreenStream.hpp"

#include <utility>

namespace orvel {
namespace {

CaptureFailure silence() {
  return {"The desktop does not answer."};
}

bool answers(const X11Connection& connection) {
  const auto asked = xcb_get_input_focus(connection.get());
  return awaitReply(connection, xcb_get_input_focus_reply, asked) != nullptr;
}

/// The displays of an X server, as they were when this was made. The connection is for the stream that is started, and
/// for nothing else. Threads: one at a time; `start` waits for the server.
class ScreenContent final : public ShareableContent {
 public:
  ScreenContent(std::shared_ptr<X11Connection> connection, MonitorList::Layout layout)
      : connection_(std::move(connection)), layout_(std::move(layout)) {}

  std::vector<Size> displays() const override {
    std::vector<Size> sizes;
    for (const Rect& monitor : layout_.monitors) sizes.push_back(monitor.size);
    return sizes;
  }

  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                     const CaptureConfiguration& configuration,
                                                                     CaptureStream::Handlers handlers) override {
    return startScreenStream(connection_, display, configuration, std::move(handlers));
  }

 private:
  const std::shared_ptr<X11Connection> connection_;
  const MonitorList::Layout layout_;
};

}  // namespace

X11CaptureService::X11CaptureService(const X11Connection& connection, std::string display)
    : connection_(connection), display_(std::move(display)) {}

std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> X11CaptureService::shareableContent() {
  // A connection to a server that hangs cannot be shut down while it is being made, so first one that can is asked.
  if (!answers(connection_)) return silence();
  std::shared_ptr<X11Connection> connection = X11Connection::open(display_);
  if (!connection) return silence();
  const bool isTooLate = state_.withLock([&](State& state) {
    state.newest = connection;
    return state.isDisconnected;
  });
  if (isTooLate) return silence();
  auto layout = MonitorList(*connection).ask();
  if (!layout) return silence();
  return std::make_unique<ScreenContent>(std::move(connection), *std::move(layout));
}

void X11CaptureService::disconnect() {
  const auto newest = state_.withLock([](State& state) {
    state.isDisconnected = true;
    return state.newest.lock();
  });
  if (newest) newest->shutDown();
}

}  // namespace orvel
