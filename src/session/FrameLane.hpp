#pragma once

#include "base/Executor.hpp"
#include "base/SharedBytes.hpp"
#include "session/SocketMonitor.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

namespace orvel {

/// The frames of one connection on their way into the network: which may go next, and when one counts as taken.
///
/// What the system has accepted may still lie in its buffers for seconds. So a frame may go only when all before it has
/// left this computer, or is about to, and no more than one frame is unacknowledged; only then the one before counts as
/// taken. Where frames have to wait for that, the newest counts as taken only when the next one has left, too: whoever
/// allows two on their way then has one under way and makes the next just when it can go, instead of a second that
/// grows old in waiting.
///
/// Threads: the queue's.
class FrameLane {
 public:
  struct Frame {
    std::uint8_t marker = 0;
    SharedBytes image;
    Task taken;
  };

  /// `backlog` reports on all that was sent over the connection. `ready` is called when there is a frame that may go
  /// which there was not before.
  FrameLane(Executor& queue, std::function<Backlog()> backlog, Task ready);
  ~FrameLane();
  FrameLane(const FrameLane&) = delete;
  FrameLane& operator=(const FrameLane&) = delete;

  void add(Frame frame);

  /// Whether a frame may go now.
  bool hasNext() const { return !isLeaving_ && !waiting_.empty(); }

  /// Takes the frame that may go out of the lane; there must be one. Its `taken` stays.
  Frame takeNext();

  /// The system has accepted the frame that `takeNext` gave.
  void accepted();

  /// Forgets what has not gone yet; it counts as taken.
  void clear();

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
  std::deque<Task> unconfirmed_;  // of frames that have gone
  bool isLeaving_ = false;        // one that has gone has not left yet
  bool hasWaited_ = false;        // for it to leave
  bool hasEnded_ = false;
  std::size_t newestSize_ = 0;      // of those that have gone
  std::size_t unacknowledged_ = 0;  // when last looked at
  Seconds pause_{0};
  const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace orvel
