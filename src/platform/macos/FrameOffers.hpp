#pragma once

#include "mirror/CaptureService.hpp"
#include "platform/macos/CFPointer.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>
#import <dispatch/dispatch.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace orvel {

/// Offers the samples of a stream as frames, and keeps the newest that was not taken: while nothing changes on the
/// screen, the system has no other that shows it.
///
/// Threads: its queue; `resume`, `stop` and `end` any.
class FrameOffers final : public std::enable_shared_from_this<FrameOffers> {
 public:
  FrameOffers(int framesPerSecond, CaptureStream::Handlers handlers);
  FrameOffers(const FrameOffers&) = delete;
  FrameOffers& operator=(const FrameOffers&) = delete;

  /// Where its handlers run.
  dispatch_queue_t queue() const { return queue_; }

  /// Offers the sample, or keeps it for a receiver that waits.
  void sampleCame(CMSampleBufferRef sample, SCStreamOutputType type);

  /// Offers what is kept, if the receiver waits. Returns at once.
  void resume();

  /// The stream has ended by itself. Returns at once.
  void stop();

  /// From its return on, no handler runs; it waits for one that does. Not for handlers. Returns whether the stream has
  /// not ended by itself before.
  bool end();

 private:
  class Sample;

  void offer(Sample& frame, CMSampleBufferRef sample);
  void offerKept();
  void keep(CMSampleBufferRef sample);
  void offerAgainAt(dispatch_time_t when);

  const dispatch_queue_t queue_;
  const std::int64_t frameInterval_;  // nanoseconds
  const CaptureStream::Handlers handlers_;
  CFPointer<CMSampleBufferRef> kept_;
  std::uint64_t timesKept_ = 0;  // identifies `kept_`
  bool receiverIsBlocked_ = false;
  std::atomic<bool> hasEnded_ = false;
};

}  // namespace orvel
