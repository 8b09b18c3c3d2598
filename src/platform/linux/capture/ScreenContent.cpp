#include "platform/linux/capture/ScreenContent.hpp"

#include "platform/linux/capture/ScreenFormat.hpp"
#include "platform/linux/capture/ScreenStream.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <utility>

namespace orvel {

ScreenContent::ScreenContent(std::shared_ptr<X11Connection> connection, MonitorList::Layout layout)
    : connection_(std::move(connection)), layout_(std::move(layout)) {}

ScreenContent::~ScreenContent() = default;

std::vector<Size> ScreenContent::displays() const {
  std::vector<Size> sizes;
  for (const Rect& monitor : layout_.monitors) sizes.push_back(monitor.size);
  return sizes;
}

std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> ScreenContent::start(
    std::size_t display, const CaptureConfiguration& configuration, CaptureStream::Handlers handlers) {
  const auto format = ScreenFormat::of(*connection_);
  if (!format) return CaptureFailure{"The colour depth of this computer's screen is not supported."};
  auto stream = std::make_unique<ScreenStream>(connection_, display, *format, configuration, std::move(handlers));
  if (!connection_->isAlive()) return CaptureFailure{"The desktop does not answer."};
  if (!stream->begin()) return CaptureFailure{"This computer has no room left to capture its screen."};
  return stream;
}

}  // namespace orvel
