#include "bench/RealServer.hpp"

#include "app/ServerHub.hpp"
#include "base/SystemClock.hpp"
#include "base/WorkerThreads.hpp"
#include "bench/ServerProcess.hpp"
#include "fakes/FakeMachine.hpp"
#include "input/Displays.hpp"
#include "input/EventPoster.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "input/TrustCheck.hpp"
#include "platform/linux/SystemSocketTuner.hpp"
#include "session/ClientSession.hpp"
#include "session/NetworkThread.hpp"
#include "session/PairingStore.hpp"

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
    pointer_ = event.position;
    tally_.dx += event.deltaX;
    tally_.dy += event.deltaY;
    return true;
  }
  bool post(const ScrollEvent&) override { return true; }
  bool post(const KeyEvent&) override { return true; }
  std::optional<Point> pointerLocation() override { return pointer_; }
  void flush() override {}

  std::shared_ptr<const DisplayLayout> layout() const override { return layout_; }

  bool isTrusted() override { return true; }
  bool prompt() override { return false; }
  bool openSettings() override { return false; }

 private:
  static constexpr Rect screen{{0, 0}, {1920, 1080}};

  Tally& tally_;
  Point pointer_;
  const std::shared_ptr<const DisplayLayout> layout_ =
      std::make_shared<const DisplayLayout>(DisplayLayout{screen, {screen}});
};

/// What OrvelApp holds, over a counting desktop and without a toolkit.
class RealServer {
 public:
  explicit RealServer(Tally& tally) : tally_(tally), desktop_(tally) {
    preferences_.setString("orvel.token", std::string(realServerToken));
  }

  void start() {
    mainThread_->post([this] {
      hub_->observe([this](const HubState& next) {
        if (next.lastError) _exit(EXIT_FAILURE);
        if (next.isRunning) tally_.port = hub_->port();
      });
      permission_.refresh();
      hub_->start();
    });
  }

 private:
  Tally& tally_;
  CountingDesktop desktop_;
  FakeMachine machine_;
  MemoryPreferences preferences_;
  RecordingAdvertiser advertiser_;
  SystemSocketTuner tuner_;
  SystemClock clock_;
  WorkerThreads workers_;
  const std::unique_ptr<Executor> mainThread_ = workers_.makeSerialQueue();
  const std::unique_ptr<Executor> pointerQueue_ = workers_.makeSerialQueue();
  PairingStore pairing_{preferences_};
  PermissionGate permission_{desktop_};
  PointerDriver pointer_{desktop_, desktop_, clock_, *pointerQueue_};
  NetworkThread network_{tuner_};
  const SessionServices services_{.events = desktop_,
                                  .machine = machine_,
                                  .pairing = pairing_,
                                  .permission = permission_,
                                  .pointer = pointer_,
                                  .queues = workers_,
                                  .trust = desktop_};
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
