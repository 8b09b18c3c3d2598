#pragma once

#include "mirror/CaptureService.hpp"
#include "mirror/CaptureStream.hpp"
#include "platform/linux/capture/FramePace.hpp"
#include "platform/linux/capture/ScreenFormat.hpp"
#include "platform/linux/capture/ScreenView.hpp"
#include "platform/linux/capture/WakeUp.hpp"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <semaphore>
#include <thread>

namespace orvel {

class X11Connection;

/// Captures a display of an X server. While nothing changes on it, its thread sleeps; while something does, it wakes
/// for frames alone. A server that hangs does not hold up its end.
///
/// Threads: any; the handlers run on its own. Making it waits for the server.
class ScreenStream final : public CaptureStream {
 public:
  /// Has the connection for itself.
  ScreenStream(std::shared_ptr<X11Connection> connection, std::size_t display, const ScreenFormat& format,
               const CaptureConfiguration& configuration, Handlers handlers);
  ~ScreenStream() override;
  ScreenStream(const ScreenStream&) = delete;
  ScreenStream& operator=(const ScreenStream&) = delete;

  /// Begins to offer frames. Called once. False when the system has nothing left to do it with.
  bool begin();

  void resume() override;

 private:
  void run();
  bool isGoingOn() const;
  bool hasOffer() const { return isDirty_ && view_.exists(); }
  void look();
  void offer();
  void awaitNews();
  bool hasNews();
  void awaitResume();
  void restUntil(FramePace::Time end);
  void sleep(WakeUp::Minds minds, std::optional<FramePace::Time> end);

  const std::shared_ptr<X11Connection> connection_;
  const Handlers handlers_;
  const WakeUp wakeUp_;
  ScreenView view_;
  FramePace pace_;
  bool isDirty_ = true;  // there is something to be seen that was not taken
  std::atomic<bool> stopping_ = false;
  std::atomic<bool> resumed_ = false;
  std::binary_semaphore threadEnded_{0};
  std::thread thread_;
};

}  // namespace orvel
