#pragma once

#include "mirror/CaptureService.hpp"
#include "platform/linux/x11/MonitorList.hpp"

#include <memory>

namespace orvel {

class X11Connection;

/// The displays of an X server, as they were when this was made. Threads: one at a time; `start` waits for the server.
class ScreenContent final : public ShareableContent {
 public:
  /// The connection is for what is started, and for nothing else.
  ScreenContent(std::shared_ptr<X11Connection> connection, MonitorList::Layout layout);
  ~ScreenContent() override;

  std::vector<Size> displays() const override;
  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                     const CaptureConfiguration& configuration,
                                                                     CaptureStream::Handlers handlers) override;

 private:
  const std::shared_ptr<X11Connection> connection_;
  const MonitorList::Layout layout_;
};

}  // namespace orvel
