#pragma once

#include "desktop/Picture.hpp"
#include "mirror/CaptureService.hpp"
#include "mirror/ScreenRecordingAccess.hpp"

#include <memory>
#include <variant>

namespace orvel::bench {

/// A small screen that shows something else each time, and its capture, which offers a frame as soon as there is room
/// for it, however many a second are asked for.
///
/// Threads: any.
class RestlessScreen final : public CaptureService, public ScreenRecordingAccess {
 public:
  RestlessScreen();

  bool isGranted() override { return true; }
  Denial denial() const override { return {}; }
  void request() override {}
  std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> shareableContent() override;

 private:
  const Picture scenery_;  // of which the screen shows a part
};

}  // namespace orvel::bench
