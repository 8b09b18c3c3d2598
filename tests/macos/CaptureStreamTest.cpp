#include "CaptureTest.hpp"
#include "mirror/CaptureService.hpp"
#include "platform/macos/SystemCaptureService.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <semaphore>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

using Status = std::optional<std::int64_t>;

class CaptureStreamTest : public CaptureTest {
 protected:
  /// What was offered.
  struct Seen {
    bool isScreen;
    bool isValid;
    Status status;
    int width;  // 0 when it has no pixels
    int height;
  };

  void SetUp() override {
    CaptureTest::SetUp();
    start();
  }

  void TearDown() override {
    stream_.reset();
    CaptureTest::TearDown();
  }

  void start() {
    SystemCaptureService service;
    auto content = std::get<std::unique_ptr<ShareableContent>>(service.shareableContent());
    stream_ = std::get<std::unique_ptr<CaptureStream>>(content->start(
        0, {.width = 500, .height = 400, .framesPerSecond = 20},
        {.frame = [this](CapturedFrame& frame) { return see(frame); }, .stopped = [this] { receiveStop(); }}));
  }

  FrameAnswer see(CapturedFrame& frame) {
    const PixelBuffer* pixels = frame.pixels();
    seen_.push_back({frame.isScreen(), frame.isValid(), frame.status(), pixels == nullptr ? 0 : pixels->width,
                     pixels == nullptr ? 0 : pixels->height});
    if (whileSeeing_) std::exchange(whileSeeing_, {})();
    if (answers_.empty()) return FrameAnswer::taken;
    const FrameAnswer answer = answers_.front();
    answers_.pop_front();
    return answer;
  }

  void receiveStop() {
    if (whileStopping_) whileStopping_();
    ++stops_;
  }

  /// Has a sample come that is known by its width.
  static void deliver(std::size_t width) { fake::deliver({.width = width}); }
  static void deliverIdle() { fake::deliver({.status = fake::idle, .hasPixels = false}); }

  void resume() {
    stream_->resume();
    fake::finishQueue();
  }

  void letTimePass() {
    passed_ = dispatch::letTimePass();
    fake::finishQueue();
  }

  std::vector<int> widths() const {
    std::vector<int> all;
    for (const Seen& each : seen_) all.push_back(each.width);
    return all;
  }

  Status statusOf(const fake::Sample::Status& status) {
    fake::deliver({.status = status});
    return seen_.back().status;
  }

  std::unique_ptr<CaptureStream> stream_;
  std::vector<Seen> seen_;
  std::deque<FrameAnswer> answers_;
  std::function<void()> whileSeeing_;
  std::function<void()> whileStopping_;
  int stops_ = 0;
  std::vector<double> passed_;
};

TEST_F(CaptureStreamTest, AFrameIsWhatTheSampleIs) {
  fake::deliver({.width = 640, .height = 480});
  ASSERT_EQ(seen_.size(), 1u);
  EXPECT_TRUE(seen_[0].isScreen);
  EXPECT_TRUE(seen_[0].isValid);
  EXPECT_EQ(seen_[0].status, 0);
  EXPECT_EQ(seen_[0].width, 640);
  EXPECT_EQ(seen_[0].height, 480);
}

TEST_F(CaptureStreamTest, OtherSamplesAreDistinguishedFromThoseOfTheScreen) {
  fake::deliver({.type = fake::Sample::Type::audio});
  EXPECT_FALSE(seen_.at(0).isScreen);
}

TEST_F(CaptureStreamTest, BrokenSamplesAreDistinguishedFromOthers) {
  fake::deliver({.isValid = false});
  EXPECT_FALSE(seen_.at(0).isValid);
}

TEST_F(CaptureStreamTest, ASampleMayHaveNoPixels) {
  fake::deliver({.hasPixels = false});
  EXPECT_EQ(seen_.at(0).width, 0);
}

TEST_F(CaptureStreamTest, AStatusIsAWholeNumberOrNone) {
  EXPECT_EQ(statusOf(0), 0);
  EXPECT_EQ(statusOf(4), 4);
  EXPECT_EQ(statusOf(1.5), std::nullopt);
  EXPECT_EQ(statusOf("complete"), std::nullopt);
  EXPECT_EQ(statusOf(fake::Sample::NoStatus{}), std::nullopt);
  EXPECT_EQ(statusOf(fake::Sample::NoAttachments{}), std::nullopt);
}

TEST_F(CaptureStreamTest, FramesComeOnAThreadOfTheStream) {
  std::thread::id thread;
  whileSeeing_ = [&] { thread = std::this_thread::get_id(); };
  deliver(1);
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(CaptureStreamTest, WhatIsTakenIsNotKept) {
  deliver(1);
  fake::finishQueue();
  EXPECT_EQ(fake::livingSamples(), 0);
  resume();
  letTimePass();
  EXPECT_THAT(widths(), ElementsAre(1));
}

TEST_F(CaptureStreamTest, AReceiverThatWaitsGetsTheFrameWhenItHasRoomAlthoughTheScreenIsStill) {
  answers_ = {FrameAnswer::blocked};
  deliver(1);
  deliverIdle();
  deliverIdle();
  EXPECT_THAT(widths(), ElementsAre(1));
  resume();
  EXPECT_THAT(widths(), ElementsAre(1, 1));
  EXPECT_EQ(fake::livingSamples(), 0);
}

TEST_F(CaptureStreamTest, AReceiverThatWaitsGetsOnlyTheNewestFrame) {
  answers_ = {FrameAnswer::blocked};
  for (const std::size_t width : {1, 2, 3}) deliver(width);
  EXPECT_EQ(fake::livingSamples(), 1);
  EXPECT_THAT(widths(), ElementsAre(1));
  resume();
  EXPECT_THAT(widths(), ElementsAre(1, 3));
}

TEST_F(CaptureStreamTest, OnlyWhatShowsTheScreenIsKept) {
  answers_ = {FrameAnswer::blocked};
  deliver(1);
  fake::deliver({.isValid = false, .width = 2});
  fake::deliver({.type = fake::Sample::Type::audio, .width = 3});
  fake::deliver({.status = 2, .width = 4});
  fake::deliver({.hasPixels = false});
  resume();
  EXPECT_THAT(widths(), ElementsAre(1, 1));
}

TEST_F(CaptureStreamTest, AReceiverMayWaitAgain) {
  answers_ = {FrameAnswer::blocked, FrameAnswer::blocked};
  deliver(1);
  resume();
  EXPECT_EQ(fake::livingSamples(), 1);
  resume();
  EXPECT_THAT(widths(), ElementsAre(1, 1, 1));
}

TEST_F(CaptureStreamTest, RoomMayComeBeforeTheAnswerHasArrived) {
  answers_ = {FrameAnswer::blocked};
  whileSeeing_ = [this] { stream_->resume(); };
  deliver(1);
  fake::finishQueue();
  EXPECT_THAT(widths(), ElementsAre(1, 1));
}

TEST_F(CaptureStreamTest, ResumingCallsNoHandler) {
  answers_ = {FrameAnswer::blocked};
  deliver(1);
  std::atomic<bool> entered = false;
  std::atomic<bool> goesOn = false;
  whileSeeing_ = [&] {
    entered = true;
    while (!goesOn) std::this_thread::yield();
  };
  stream_->resume();
  goesOn = true;
  fake::finishQueue();
  EXPECT_TRUE(entered);
}

TEST_F(CaptureStreamTest, WithoutAWaitingReceiverThereIsNothingToResume) {
  answers_ = {FrameAnswer::again};
  deliver(1);
  resume();
  EXPECT_THAT(widths(), ElementsAre(1));
}

TEST_F(CaptureStreamTest, AFrameIsOfferedAgainAfterOneInterval) {
  answers_ = {FrameAnswer::again};
  deliver(1);
  deliverIdle();
  EXPECT_THAT(widths(), ElementsAre(1, 0));
  letTimePass();
  EXPECT_THAT(passed_, ElementsAre(0.05));
  EXPECT_THAT(widths(), ElementsAre(1, 0, 1));
  letTimePass();
  EXPECT_THAT(passed_, IsEmpty());
}

TEST_F(CaptureStreamTest, TheIntervalCountsFromWhenTheFrameWasOffered) {
  answers_ = {FrameAnswer::again};
  whileSeeing_ = [] { dispatch::spend(0.02); };
  deliver(1);
  letTimePass();
  EXPECT_THAT(passed_, ElementsAre(testing::DoubleNear(0.03, 1e-6)));
}

TEST_F(CaptureStreamTest, AFrameMayHaveToBeOfferedOften) {
  answers_ = {FrameAnswer::again, FrameAnswer::again};
  deliver(1);
  letTimePass();
  letTimePass();
  EXPECT_THAT(widths(), ElementsAre(1, 1, 1));
}

TEST_F(CaptureStreamTest, ANewerFrameIsOfferedInsteadOfTheSameAgain) {
  answers_ = {FrameAnswer::again};
  deliver(1);
  deliver(2);
  EXPECT_EQ(fake::livingSamples(), 0);
  letTimePass();
  EXPECT_THAT(widths(), ElementsAre(1, 2));
}

TEST_F(CaptureStreamTest, ANewerFrameHasAnIntervalOfItsOwn) {
  answers_ = {FrameAnswer::again, FrameAnswer::again};
  deliver(1);
  deliver(2);
  letTimePass();
  EXPECT_THAT(passed_, ElementsAre(0.05, 0.05));
  EXPECT_THAT(widths(), ElementsAre(1, 2, 2));
}

TEST_F(CaptureStreamTest, AReceiverThatWaitsIsNotOfferedWhatWasToComeAgain) {
  answers_ = {FrameAnswer::again, FrameAnswer::blocked};
  deliver(1);
  deliver(2);
  letTimePass();
  EXPECT_THAT(widths(), ElementsAre(1, 2));
}

TEST_F(CaptureStreamTest, AtItsEndItGivesBackWhatItKept) {
  answers_ = {FrameAnswer::again};
  deliver(1);
  EXPECT_EQ(fake::livingSamples(), 1);
  fake::screenCapture().stop.comes = false;
  stream_.reset();
  EXPECT_EQ(fake::livingSamples(), 0);
  letTimePass();
  EXPECT_THAT(widths(), ElementsAre(1));
}

TEST_F(CaptureStreamTest, SamplesThatComeWhileItIsStoppedAreNotOffered) {
  fake::screenCapture().whileStopping = [] { deliver(2); };
  deliver(1);
  stream_.reset();
  EXPECT_THAT(widths(), ElementsAre(1));
}

TEST_F(CaptureStreamTest, ItsEndWaitsForTheHandlerThatRuns) {
  std::binary_semaphore entered{0};
  std::binary_semaphore released{0};
  std::atomic<bool> hasReturned = false;
  whileSeeing_ = [&] {
    entered.release();
    released.acquire();
    hasReturned = true;
  };
  fake::post({.width = 1});
  entered.acquire();
  std::thread ending([&] {
    stream_.reset();
    EXPECT_TRUE(hasReturned);
  });
  std::this_thread::sleep_for(20ms);
  released.release();
  ending.join();
}

TEST_F(CaptureStreamTest, ASystemThatDoesNotAnswerHoldsUpNoEnd) {
  fake::screenCapture().stop.comes = false;
  const auto begun = std::chrono::steady_clock::now();
  stream_.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
  EXPECT_EQ(fake::screenCapture().calls.back(), "stop");
  fake::answerHeldBack();
  fake::finishAnswers();
}

TEST_F(CaptureStreamTest, ItsEndWaitsAMomentForThatOfTheCapture) {
  constexpr auto moment = 300ms;
  fake::screenCapture().stop.comes = false;
  std::atomic<bool> hasAnswered = false;
  std::thread answering([&] {
    while (fake::callCount() < 5) std::this_thread::yield();
    std::this_thread::sleep_for(50ms);
    hasAnswered = true;
    fake::answerHeldBack();
  });
  const auto begun = std::chrono::steady_clock::now();
  stream_.reset();
  EXPECT_TRUE(hasAnswered || std::chrono::steady_clock::now() - begun >= moment);
  answering.join();
  fake::finishAnswers();
}

TEST_F(CaptureStreamTest, UntilTheCaptureHasEndedItsOutputStays) {
  stream_.reset();
  fake::screenCapture().keepsOutputs = false;
  fake::screenCapture().stop.comes = false;
  start();
  deliver(1);
  EXPECT_THAT(widths(), ElementsAre(1)) << "so it is kept while it runs";
  stream_.reset();
  EXPECT_TRUE(fake::newestHasOutput());
  fake::answerHeldBack();
  fake::finishAnswers();
  EXPECT_FALSE(fake::newestHasOutput());
}

TEST_F(CaptureStreamTest, AnErrorOfTheStopIsNobodysBusiness) {
  fake::screenCapture().stop.error = "It does not run.";
  stream_.reset();
  EXPECT_EQ(stops_, 0);
}

TEST_F(CaptureStreamTest, WhenItEndsByItselfItSaysSoOnceAndLast) {
  answers_ = {FrameAnswer::blocked};
  deliver(1);
  fake::failStream("The user stopped it.");
  fake::failStream("It has stopped.");
  deliver(2);
  resume();
  EXPECT_EQ(stops_, 1);
  EXPECT_THAT(widths(), ElementsAre(1));
  EXPECT_EQ(fake::livingSamples(), 0);
}

TEST_F(CaptureStreamTest, WhatHasEndedByItselfIsNotStopped) {
  fake::failStream("The system stopped it.");
  fake::finishQueue();
  stream_.reset();
  EXPECT_EQ(fake::screenCapture().calls.back(), "start");
}

TEST_F(CaptureStreamTest, ItsOwnEndIsReportedOnTheQueueOfFrames) {
  std::thread::id frames;
  std::thread::id end;
  whileSeeing_ = [&] { frames = std::this_thread::get_id(); };
  whileStopping_ = [&] { end = std::this_thread::get_id(); };
  deliver(1);
  fake::failStream("The system stopped it.");
  fake::finishQueue();
  EXPECT_EQ(end, frames);
}

TEST_F(CaptureStreamTest, ItMayBeDestroyedWhileItsOwnEndIsReported) {
  std::binary_semaphore entered{0};
  std::binary_semaphore released{0};
  whileStopping_ = [&] {
    entered.release();
    released.acquire();
  };
  fake::failStream("The system stopped it.");
  entered.acquire();
  std::thread ending([&] {
    stream_.reset();
    EXPECT_EQ(stops_, 1);
  });
  std::this_thread::sleep_for(20ms);
  released.release();
  ending.join();
}

TEST_F(CaptureStreamTest, AnEndThatIsReportedTooLateIsNotPassedOn) {
  fake::screenCapture().stop.comes = false;
  stream_.reset();
  fake::failStream("It has stopped.");
  fake::finishQueue();
  EXPECT_EQ(stops_, 0);
}

}  // namespace
}  // namespace orvel
