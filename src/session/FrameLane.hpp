#pragma once

#include "base/Executor.hpp"
#include "base/SharedBytes.hpp"
#include "session/SocketTuner.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

namespace orvel {

/// The frames of one connection on their way into the network: which may go next, and when one counts as taken.
///
/// What the system has accepted may still lie in its buffers for seconds. So a frame may go only when all before it has
/// left this computer, or is about to, and no more than one frame is unacknowledged; only then the one before counts as
/// taken. Where frames have to wait for that, the newest
/// counts as taken only when the next one has left, too: whoever allows two on their way then has one under way and
/// makes the next just when it can go, instead of a second that grows old in waiting.
///
/// Threads: the queue's.
class FrameLane {
 public:
  struct Frame {
    std::uint8_t marker = 0;
    SharedBytes image;
    Task taken;
  };

  /// `backlog` tells of all that was sent over the connection. `ready` is called when there is a frame that may go
  /// which there was not before.
  FrameLane(Executor& queue, std::function<Backlog()> backlog, Task ready);
  ~FrameLane();
  FrameLane(const FrameLane&) = delete;
  FrameLane& operator=(const FrameLane&) = delete;

  void add(Frame frame);

  /// The frame that may go now, or null.
  const Frame* next() const;

  /// The system has accepted the frame that `next` gave.
  void accepted();

  /// Nothing goes any more: all frames count as taken, now and from now on.
  void end();

 private:
  void look();
  void lookLater(const Backlog& backlog);
  void hasLeft();

  Executor& queue_;
  const std::function<Backlog()> backlog_;
  const Task ready_;
  std::deque<Frame> waiting_;
  std::deque<Task> untold_;  // of frames that were accepted
  bool isLeaving_ = false;   // an accepted one has not left yet
  bool hasWaited_ = false;   // for it to leave
  bool hasEnded_ = false;
  std::size_t newestSize_ = 0;      // of those that were accepted
  std::size_t unacknowledged_ = 0;  // when last looked at
  Seconds pause_{0};
  const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace orvel
