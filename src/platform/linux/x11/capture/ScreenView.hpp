#pragma once

#include "mirror/JPEGEncoder.hpp"
#include "platform/linux/capture/FrameScaler.hpp"
#include "platform/linux/capture/PixelRect.hpp"
#include "platform/linux/x11/capture/CursorOverlay.hpp"
#include "platform/linux/x11/capture/ScreenImage.hpp"
#include "platform/linux/x11/capture/ScreenWatch.hpp"

#include <memory>

namespace orvel {

/// One display as a person sees it, brought to the size of a frame. Threads: one at a time; waits for the server.
class ScreenView {
 public:
  /// Where the display is, what it shows, and how large a frame is.
  ScreenView(const X11Connection& connection, std::size_t display, const ScreenFormat& format, int width, int height);

  /// Takes what has changed. Returns whether there is something to be seen that was not there before.
  bool update();

  /// Whether the display is there.
  bool exists() const { return image_ != nullptr; }

  /// The display as it is now. Only what has changed of it is fetched. Null when the server does not show it.
  const PixelBuffer* picture();

  /// Ends the use of the picture.
  void releasePicture();

  /// Says whether and when to update.
  ScreenWatch& watch() { return watch_; }

 private:
  void moveTo(const PixelRect& area);
  bool takeDamage();
  bool looksDifferent();
  bool cursorHasChanged();

  const X11Connection& connection_;
  const ScreenFormat format_;
  ScreenWatch watch_;
  FrameScaler scaler_;
  CursorOverlay overlay_;
  std::unique_ptr<ScreenImage> image_;     // null while there is no display
  std::unique_ptr<ScreenImage> previous_;  // only when the server does not report damage
  Rows stale_;                             // the rows of the image that are to be fetched
  Cursor cursor_;
  PixelBuffer picture_;
};

}  // namespace orvel
