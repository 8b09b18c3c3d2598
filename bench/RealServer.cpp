#include "bench/RealServer.hpp"

#include "app/ServerHub.hpp"
#include "base/Clock.hpp"
#include "base/WorkerThreads.hpp"
#include "bench/RestlessScreen.hpp"
#include "bench/ServerProcess.hpp"
#include "fakes/Rules.hpp"
#include "input/Displays.hpp"
#include "input/EventPoster.hpp"
#include "input/TrustCheck.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"
#include "platform/linux/SystemSocketMonitor.hpp"
#include "session/NetworkThread.hpp"

#include <unistd.h>

#include <memory>
#include <string>

namespace orvel::bench {
namespace {

/// A desktop that sums up the motion posted to it. Threads: one posts at a time.
class CountingDesktop final : public EventPoster, public Displays, public TrustCheck {
 public:
  explicit CountingDesktop(Tally& tally) : tally_(tally) {}

  bool post(const MouseEvent& event) override {
    pointer_ = event.position.value_or(pointer_);
    tally_.dx += event.deltaX;
    tally_.dy += event.deltaY;
    return true;
  }
  bool post(const ScrollEvent&) override { return true; }
  bool post(const KeyEvent&) override { return true; }
  bool post(const SystemDefinedEvent&) override { return true; }
  bool post(const TextEvent&) override { return true; }
  bool tracksPointer() const override { return true; }
  std::optional<Point> pointerLocation() override { return pointer_; }
  void flush() override {}

  std::shared_ptr<const DisplayLayout> layout() const override { return layout_; }

  bool isTrusted() override { return true; }
  PermissionNotice notice() const override { return {}; }
  void prompt() override {}
  void openSettings() override {}

 private:
  static constexpr Rect screen{{0, 0}, {1920, 1080}};

  Tally& tally_;
  Point pointer_;
  const std::shared_ptr<const DisplayLayout> layout_ =
      std::make_shared<const DisplayLayout>(DisplayLayout{screen, {screen}});
};

/// The same services, but with another screen and its mirror.
SessionServices withMirror(const SessionServices& services, ScreenRecordingAccess& recording, ScreenMirror& mirror) {
  return {.apps = services.apps,
          .events = services.events,
          .keyboard = services.keyboard,
          .keys = services.keys,
          .machine = services.machine,
          .media = services.media,
          .mirror = mirror,
          .pairing = services.pairing,
          .permission = services.permission,
          .pointer = services.pointer,
          .queues = services.queues,
          .recording = recording,
          .snap = services.snap,
          .trust = services.trust};
}

/// What OrvelApp holds, over a counting desktop with a restless screen, and without a toolkit.
class RealServer {
 public:
  explicit RealServer(Tally& tally) : tally_(tally), desktop_(tally) {
    rules_.preferences.setString("orvel.token", std::string(realServerToken));
  }

  void start() {
    mainThread_->post([this] {
      hub_->observe([this](const HubState& next) {
        if (next.lastError) _exit(EXIT_FAILURE);
        if (next.isRunning) tally_.port = hub_->port();
      });
      rules_.permission.refresh();
      hub_->start();
    });
  }

 private:
  Tally& tally_;
  CountingDesktop desktop_;
  RecordingAdvertiser advertiser_;
  SystemSocketMonitor monitor_;
  SystemClock clock_;
  WorkerThreads workers_;
  const std::unique_ptr<Executor> mainThread_ = workers_.makeSerialQueue();
  Rules rules_{desktop_, clock_, workers_};
  RestlessScreen screen_;
  SystemJPEGEncoder encoder_;
  const std::unique_ptr<Executor> mirrorQueue_ = workers_.makeSerialQueue();
  ScreenMirror mirror_{{.access = screen_, .capture = screen_, .encoder = encoder_, .queue = *mirrorQueue_}};
  const SessionServices services_ = withMirror(rules_.services, screen_, mirror_);
  NetworkThread network_{monitor_};
  const std::shared_ptr<ServerHub> hub_ = ServerHub::make({.advertiser = advertiser_,
                                                           .clock = clock_,
                                                           .mainThread = *mainThread_,
                                                           .network = network_,
                                                           .services = services_},
                                                          freePort());
};

}  // namespace

void runRealServer(Tally& tally) {
  RealServer server(tally);
  server.start();
  while (true) pause();
}

}  // namespace orvel::bench
