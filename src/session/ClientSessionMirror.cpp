#include "mirror/ScreenMirror.hpp"
#include "mirror/ScreenRecordingAccess.hpp"
#include "session/ClientSession.hpp"

#include <utility>

namespace orvel {
namespace {

constexpr std::uint8_t frameMarker = 0x80;

boost::json::object denial(const std::string& reason) {
  return {{"t", "mirrorDenied"}, {"reason", reason}};
}

}  // namespace

void ClientSession::startMirror(std::int64_t width, std::int64_t fps, double quality) {
  if (!services_.recording.isGranted()) {
    send(denial(services_.recording.denial().onRequest));
    services_.recording.request();
    return;
  }
  services_.mirror.stop();
  owningMirror_ = true;
  const auto self = weak_from_this();
  // By way of the session's own queue, on which it may also end: no thread of the capture must be what keeps it alive.
  services_.mirror.setOnFrame([self, &queue = transport_->queue()](SharedBytes jpeg, Task sent) {
    queue.post([self, jpeg = std::move(jpeg), sent = std::move(sent)]() mutable {
      if (const auto session = self.lock()) session->sendMirrorFrame(std::move(jpeg), std::move(sent));
    });
  });
  backlog_ += taskCost;
  services_.mirror.start(
      width, fps, quality,
      [self, &queue = transport_->queue(), start = ++mirrorStarts_](const ScreenMirror::Outcome& outcome) {
        queue.post([self, start, outcome] {
          if (const auto session = self.lock()) session->mirrorStarted(start, outcome);
        });
      });
}

void ClientSession::mirrorStarted(std::uint64_t start, const ScreenMirror::Outcome& outcome) {
  settle(taskCost);
  if (const auto* reason = std::get_if<std::string>(&outcome)) {
    // A later start may succeed yet.
    if (start == mirrorStarts_) owningMirror_ = false;
    send(denial(*reason));
    return;
  }
  // The hub already knows of the end, and would forget it.
  if (hasEnded()) return;
  if (const auto hub = hub_.lock()) hub->setMirroring(true);
  // What still waits is of the capture before, and of another size.
  transport_->dropFrames();
  const Size size = std::get<Size>(outcome);
  send({{"t", "mirrorReady"},
        {"width", static_cast<std::int64_t>(size.width)},
        {"height", static_cast<std::int64_t>(size.height)}});
}

void ClientSession::sendMirrorFrame(SharedBytes jpeg, Task sent) {
  if (!authenticated_) {
    sent();
    return;
  }
  transport_->sendFrame(frameMarker, std::move(jpeg), std::move(sent));
}

void ClientSession::stopMirror() {
  if (!std::exchange(owningMirror_, false)) return;
  services_.mirror.setOnFrame(nullptr);
  services_.mirror.stop();
  transport_->dropFrames();
  if (const auto hub = hub_.lock()) hub->setMirroring(false);
}

}  // namespace orvel
