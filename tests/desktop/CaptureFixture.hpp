#pragma once

#include "desktop/FrameReceiver.hpp"
#include "desktop/Painter.hpp"
#include "desktop/Timeout.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "platform/linux/x11/X11CaptureService.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvel {

/// The screen of a desktop, whoever draws on it, and whoever watches it.
struct Scene {
  explicit Scene(const std::vector<std::string>& serverArguments = {}) : desktop(serverArguments) {}

  std::unique_ptr<ShareableContent> content() {
    auto found = service.shareableContent();
    auto* content = std::get_if<std::unique_ptr<ShareableContent>>(&found);
    return content != nullptr ? std::move(*content) : nullptr;
  }

  /// Starts to capture the main display, or another. Null when that fails.
  std::unique_ptr<CaptureStream> start(const CaptureConfiguration& configuration, std::size_t display = 0) {
    const auto shareable = content();
    if (!shareable) return nullptr;
    auto started = shareable->start(display, configuration, receiver.handlers());
    auto* stream = std::get_if<std::unique_ptr<CaptureStream>>(&started);
    return stream != nullptr ? std::move(*stream) : nullptr;
  }

  bool setMonitor(const std::string& name, const std::string& geometry, const std::string& output) const {
    return desktop.run({"xrandr", "--setmonitor", name, geometry, output}) == 0;
  }

  VirtualDesktop desktop;
  const std::unique_ptr<X11Connection> connection = X11Connection::open(desktop.display());
  X11CaptureService service{*connection, desktop.display()};
  FrameReceiver receiver;
  Painter painter{desktop.display(), 0x204060};
};

}  // namespace orvel
