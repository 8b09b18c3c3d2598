#include "fakes/FakeClock.hpp"
#include "fakes/ScriptedScreen.hpp"
#include "mirror/ScreenMirror.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct ScreenMirrorTest : testing::Test {
  ScreenMirrorTest() { receiveFrames(); }

  void receiveFrames() {
    mirror.setOnFrame([this](SharedBytes jpeg, Task done) {
      frames.push_back(std::move(jpeg));
      sent.push_back(std::move(done));
    });
  }

  void begin(std::int64_t maxWidth, std::int64_t fps = 12, double quality = 0.45) {
    mirror.start(maxWidth, fps, quality, [this](const ScreenMirror::Outcome& outcome) { outcomes.push_back(outcome); });
  }

  void start(std::int64_t maxWidth = 900, std::int64_t fps = 12, double quality = 0.45) {
    begin(maxWidth, fps, quality);
    clock.runDue();
  }

  void stop() {
    mirror.stop();
    clock.runDue();
  }

  /// Offers a frame whose image is so large, and has it arrive if it is delivered.
  void offerOf(std::size_t size) {
    encoder.size = size;
    screen.offer();
    if (!sent.empty()) arrive();
  }

  void arrive() {
    std::exchange(sent.back(), [] {})();
  }

  /// What the next frame is encoded with.
  double quality() {
    encoder.size = 300'000;
    screen.offer();
    if (!sent.empty()) arrive();
    return encoder.qualities.back();
  }

  std::string lastError() const { return std::get<std::string>(outcomes.back()); }

  FakeClock clock;
  FakeExecutor queue{clock};
  ScriptedScreen screen;
  ScriptedEncoder encoder;
  std::vector<SharedBytes> frames;
  std::vector<Task> sent;
  std::vector<ScreenMirror::Outcome> outcomes;
  ScreenMirror mirror{{.access = screen, .capture = screen, .encoder = encoder, .queue = queue}};
};

TEST_F(ScreenMirrorTest, CapturesTheFirstDisplayAtTheSizeItSays) {
  begin(500);
  EXPECT_THAT(outcomes, IsEmpty()) << "for it takes its time elsewhere";
  clock.runDue();
  EXPECT_THAT(screen.captured, ElementsAre(0u));
  EXPECT_EQ(screen.configurations.at(0).width, 500);
  EXPECT_EQ(screen.configurations.at(0).height, 400);
  EXPECT_THAT(outcomes, ElementsAre(ScreenMirror::Outcome(Size{500, 400})));
}

TEST_F(ScreenMirrorTest, NeverScalesUp) {
  for (const std::int64_t width : {std::int64_t{1000}, std::int64_t{1001}, std::numeric_limits<std::int64_t>::max()}) {
    start(width);
    EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{1000, 800})) << width;
  }
}

TEST_F(ScreenMirrorTest, IsNeverSmallerThan320By240InEitherDirection) {
  for (const std::int64_t width :
       {std::int64_t{1}, std::int64_t{0}, std::int64_t{-900}, std::numeric_limits<std::int64_t>::min()}) {
    start(width);
    EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{320, 240})) << width;
  }
  screen.displays = {{1920, 400}};
  start(900);
  EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{900, 240}));
  screen.displays = {{400, 1920}};
  start(200);
  EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{320, 960}));
  screen.displays = {{100, 50}};
  start(900);
  EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{320, 240}));
}

TEST_F(ScreenMirrorTest, RoundsSizesHalfAwayFromZeroAndNotToEven) {
  screen.displays = {{1000, 501}};
  start(500);
  EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{500, 251}));
  screen.displays = {{1920, 1080}};
  start(901);
  EXPECT_EQ(outcomes.back(), ScreenMirror::Outcome(Size{901, 507}));
}

TEST_F(ScreenMirrorTest, FramesASecondAreWithin1To30) {
  const std::vector<std::pair<std::int64_t, int>> cases = {{0, 1},
                                                           {-5, 1},
                                                           {1, 1},
                                                           {12, 12},
                                                           {30, 30},
                                                           {31, 30},
                                                           {120, 30},
                                                           {std::numeric_limits<std::int64_t>::max(), 30},
                                                           {std::numeric_limits<std::int64_t>::min(), 1}};
  for (const auto& [asked, got] : cases) {
    start(900, asked);
    EXPECT_EQ(screen.configurations.back().framesPerSecond, got) << asked;
  }
}

TEST_F(ScreenMirrorTest, QualityIsWithin02To085) {
  const std::vector<std::pair<double, double>> cases = {{0.1, 0.2},   {-1, 0.2},    {0.2, 0.2},   {0.5, 0.5},
                                                        {0.85, 0.85}, {0.95, 0.85}, {1e300, 0.85}};
  for (const auto& [asked, got] : cases) {
    start(900, 12, asked);
    EXPECT_DOUBLE_EQ(quality(), got) << asked;
    stop();
  }
}

TEST_F(ScreenMirrorTest, WithoutPermissionItSaysSoAndCapturesNothing) {
  screen.granted = false;
  begin(900);
  EXPECT_EQ(lastError(), "Screen Recording is off for Orvel. Turn it on in Privacy & Security.");
  clock.runDue();
  EXPECT_THAT(outcomes, SizeIs(1));
  EXPECT_THAT(screen.configurations, IsEmpty());
  EXPECT_EQ(screen.requests, 0) << "it is not for the mirror to ask the user";
}

TEST_F(ScreenMirrorTest, WithoutADisplayItSaysSo) {
  screen.displays.clear();
  start();
  EXPECT_EQ(lastError(), "No display available to capture.");
  EXPECT_THAT(outcomes, SizeIs(1));
}

TEST_F(ScreenMirrorTest, ErrorsOfTheDesktopAreHandedOnAsTheyAre) {
  screen.contentFailure = "The content is not shared.";
  start();
  EXPECT_EQ(lastError(), "The content is not shared.");
  screen.contentFailure.reset();
  screen.startFailure = "The stream does not start.";
  start();
  EXPECT_EQ(lastError(), "The stream does not start.");
  EXPECT_THAT(outcomes, SizeIs(2));
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ScreenMirrorTest, AFailedStartEndsWhatRan) {
  start();
  screen.startFailure = "No.";
  start();
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ScreenMirrorTest, ASecondStartReplacesACaptureThatNobodyStopped) {
  start();
  start();
  EXPECT_EQ(screen.running, 1);
}

TEST_F(ScreenMirrorTest, EachFrameBecomesOneImage) {
  start();
  ScriptedFrame frame;
  encoder.size = 5;
  encoder.fill = 0xab;
  EXPECT_EQ(screen.offer(frame), FrameAnswer::taken);
  ASSERT_THAT(frames, SizeIs(1));
  EXPECT_THAT(std::vector(frames[0].data.get(), frames[0].data.get() + frames[0].size),
              ElementsAre(0xab, 0xab, 0xab, 0xab, 0xab));
  EXPECT_THAT(encoder.pictures, ElementsAre(&frame.picture));
  EXPECT_THAT(encoder.qualities, ElementsAre(0.45));
}

TEST_F(ScreenMirrorTest, WhatIsNoWholeFrameOfTheScreenIsDropped) {
  start();
  ScriptedFrame sound;
  sound.ofScreen = false;
  ScriptedFrame invalid;
  invalid.valid = false;
  EXPECT_EQ(screen.offer(sound), FrameAnswer::taken);
  EXPECT_EQ(screen.offer(invalid), FrameAnswer::taken);
  for (const std::int64_t status : {1, 2, 3, 4, 5, -1}) {
    ScriptedFrame incomplete;
    incomplete.statusValue = status;
    EXPECT_EQ(screen.offer(incomplete), FrameAnswer::taken) << status;
    EXPECT_EQ(incomplete.fetches, 0) << status;
  }
  EXPECT_EQ(sound.fetches + invalid.fetches, 0);
  EXPECT_THAT(encoder.qualities, IsEmpty());
  EXPECT_THAT(frames, IsEmpty());
}

TEST_F(ScreenMirrorTest, AFrameIsCompleteWhenItSaysSoOrNothing) {
  start();
  ScriptedFrame complete;
  complete.statusValue = 0;
  screen.offer(complete);
  screen.offer();
  EXPECT_THAT(frames, SizeIs(2));
}

TEST_F(ScreenMirrorTest, FramesWithoutPixelsOrImageAreDroppedAndTakeNoRoom) {
  start();
  for (int count = 0; count < 3; ++count) {
    ScriptedFrame empty;
    empty.hasPixels = false;
    EXPECT_EQ(screen.offer(empty), FrameAnswer::taken);
  }
  EXPECT_THAT(encoder.qualities, IsEmpty());
  encoder.works = false;
  for (int count = 0; count < 3; ++count) EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_THAT(frames, IsEmpty());
  encoder.works = true;
  screen.offer();
  screen.offer();
  EXPECT_THAT(frames, SizeIs(2));
}

TEST_F(ScreenMirrorTest, TwoFramesOnTheirWayAreEnough) {
  start();
  screen.offer();
  screen.offer();
  ScriptedFrame third;
  EXPECT_EQ(screen.offer(third), FrameAnswer::blocked);
  EXPECT_EQ(third.fetches, 0) << "which would cost";
  EXPECT_THAT(encoder.qualities, SizeIs(2));
  EXPECT_EQ(screen.resumes, 0);
  sent[0]();
  EXPECT_EQ(screen.resumes, 1) << "as it was refused, what is on the screen is asked for";
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
  EXPECT_THAT(frames, SizeIs(3));
}

TEST_F(ScreenMirrorTest, ArrivalsThatNobodyWaitsForWakeNobody) {
  start();
  screen.offer();
  screen.offer();
  sent[0]();
  sent[1]();
  EXPECT_EQ(screen.resumes, 0);
  screen.offer();
  screen.offer();
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
  sent[2]();
  sent[3]();
  EXPECT_EQ(screen.resumes, 1);
}

TEST_F(ScreenMirrorTest, MoreArrivalsThanFramesMakeNoMoreRoom) {
  start();
  screen.offer();
  for (int count = 0; count < 3; ++count) sent[0]();
  screen.offer();
  screen.offer();
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
}

TEST_F(ScreenMirrorTest, AFrameThatNobodyReceivesTakesItsRoom) {
  start();
  mirror.setOnFrame(nullptr);
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
  EXPECT_THAT(frames, IsEmpty());
  stop();
  start();
  receiveFrames();
  screen.offer();
  EXPECT_THAT(frames, SizeIs(1)) << "until the next start";
}

TEST_F(ScreenMirrorTest, LargeFramesLowerTheQualityDownToTheFloor) {
  start(900, 12, 0.33);
  offerOf(420'001);
  EXPECT_NEAR(quality(), 0.27, 1e-9);
  offerOf(899'999);
  EXPECT_NEAR(quality(), 0.21, 1e-9);
  offerOf(900'000);
  EXPECT_DOUBLE_EQ(quality(), 0.2);
  offerOf(500'000);
  EXPECT_DOUBLE_EQ(quality(), 0.2);
}

TEST_F(ScreenMirrorTest, AFrameOverTheBudgetIsDeliveredAsItIs) {
  start(900, 12, 0.23);
  offerOf(500'000);
  EXPECT_THAT(frames, SizeIs(1));
  EXPECT_THAT(encoder.qualities, SizeIs(1)) << "and not encoded anew";
  EXPECT_DOUBLE_EQ(quality(), 0.2) << "not 0.17";
}

TEST_F(ScreenMirrorTest, AFrameOverTheCeilingIsNotDeliveredButLowersTheQuality) {
  start(900, 12, 0.5);
  encoder.size = 900'001;
  EXPECT_EQ(screen.offer(), FrameAnswer::again);
  EXPECT_THAT(frames, IsEmpty());
  EXPECT_NEAR(quality(), 0.44, 1e-9);
  encoder.size = 900'000;
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_THAT(frames, SizeIs(2));
}

TEST_F(ScreenMirrorTest, FramesOverTheCeilingTakeNoRoom) {
  start();
  encoder.size = 950'000;
  for (int count = 0; count < 3; ++count) screen.offer();
  encoder.size = 1000;
  screen.offer();
  screen.offer();
  EXPECT_THAT(frames, SizeIs(2));
}

TEST_F(ScreenMirrorTest, WhatIsTooLargeAtTheFloorIsNotTriedForEver) {
  start(900, 12, 0.25);
  encoder.size = 950'000;
  EXPECT_EQ(screen.offer(), FrameAnswer::again);
  EXPECT_EQ(screen.offer(), FrameAnswer::taken) << "at 0.2";
}

TEST_F(ScreenMirrorTest, SmallFramesRaiseTheQualityUpToWhatWasAskedFor) {
  start(900, 12, 0.45);
  offerOf(500'000);
  offerOf(500'000);
  EXPECT_NEAR(quality(), 0.33, 1e-9);
  offerOf(209'999);
  EXPECT_NEAR(quality(), 0.35, 1e-9);
  for (int count = 0; count < 4; ++count) offerOf(100'000);
  EXPECT_NEAR(quality(), 0.43, 1e-9);
  offerOf(100'000);
  EXPECT_DOUBLE_EQ(quality(), 0.45);
  offerOf(100'000);
  EXPECT_DOUBLE_EQ(quality(), 0.45) << "and not above";
}

TEST_F(ScreenMirrorTest, TheLastStepUpEndsAtWhatWasAskedFor) {
  start(900, 12, 0.45);
  offerOf(500'000);  // 0.39
  offerOf(0);        // 0.41
  offerOf(0);        // 0.43
  offerOf(500'000);  // 0.37
  for (int count = 0; count < 4; ++count) offerOf(0);
  EXPECT_DOUBLE_EQ(quality(), 0.45);
  start(900, 12, 0.26);
  offerOf(500'000);  // 0.2
  offerOf(0);        // 0.22
  offerOf(0);        // 0.24
  offerOf(0);
  EXPECT_DOUBLE_EQ(quality(), 0.26);
  start(900, 12, 0.25);
  offerOf(500'000);  // 0.2
  offerOf(0);
  offerOf(0);  // 0.24
  offerOf(100'000);
  EXPECT_DOUBLE_EQ(quality(), 0.25) << "not 0.26";
}

TEST_F(ScreenMirrorTest, FramesNearTheBudgetLeaveTheQualityAsItIs) {
  start(900, 12, 0.45);
  offerOf(500'000);
  for (const std::size_t size : {210'000u, 420'000u}) {
    offerOf(size);
    EXPECT_NEAR(quality(), 0.39, 1e-9) << size;
  }
}

TEST_F(ScreenMirrorTest, AStartForgetsTheQualityOfTheLast) {
  start(900, 12, 0.45);
  offerOf(500'000);
  stop();
  EXPECT_NEAR(encoder.qualities.back(), 0.45, 1e-9);
  start(900, 12, 0.6);
  EXPECT_DOUBLE_EQ(quality(), 0.6);
}

TEST_F(ScreenMirrorTest, StopEndsTheCaptureAndForgetsWhatIsOnItsWay) {
  start();
  screen.offer();
  screen.offer();
  stop();
  EXPECT_EQ(screen.running, 0);
  start();
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_THAT(frames, SizeIs(4));
}

TEST_F(ScreenMirrorTest, ArrivalsOfAnEarlierCaptureMakeNoRoom) {
  start();
  screen.offer();
  screen.offer();
  stop();
  start();
  screen.offer();
  screen.offer();
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
  sent[0]();
  sent[1]();
  EXPECT_EQ(screen.resumes, 0);
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
}

TEST_F(ScreenMirrorTest, StopWithoutACaptureIsHarmless) {
  stop();
  stop();
  start();
  stop();
  stop();
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ScreenMirrorTest, StopDoesNotWaitForTheCaptureToEnd) {
  start();
  mirror.stop();
  EXPECT_EQ(screen.running, 1);
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ScreenMirrorTest, TheNextCaptureBeginsWhenTheLastHasEnded) {
  start();
  int ranBefore = -1;
  screen.whileStarting = [&] { ranBefore = screen.running - 1; };
  mirror.stop();
  start();
  EXPECT_EQ(ranBefore, 0);
  EXPECT_EQ(screen.running, 1);
}

TEST_F(ScreenMirrorTest, OfTwoStartsInARowTheFirstHasEndedBeforeTheSecondBegins) {
  int ranBefore = -1;
  std::optional<FrameAnswer> early;
  mirror.start(900, 12, 0.45, [&](const ScreenMirror::Outcome&) {
    screen.whileStarting = [&] {
      ranBefore = screen.running - 1;
      early = screen.offer();
    };
  });
  mirror.stop();
  start(400);
  EXPECT_EQ(ranBefore, 0) << "for the encoder serves one at a time";
  EXPECT_EQ(early, FrameAnswer::blocked);
  EXPECT_THAT(frames, IsEmpty()) << "before its size is known";
  EXPECT_EQ(screen.resumes, 1);
}

TEST_F(ScreenMirrorTest, OfThreeStartsInARowEachEndsBeforeTheNextBegins) {
  int ranBefore = -1;
  mirror.start(900, 12, 0.45, [&](const ScreenMirror::Outcome&) {
    // Its end is asked for behind the start that is pending already.
    mirror.stop();
    screen.whileStarting = [&] { ranBefore = screen.running - 1; };
  });
  mirror.stop();
  start(400);
  EXPECT_EQ(ranBefore, 0);
  EXPECT_EQ(screen.running, 1);
}

TEST_F(ScreenMirrorTest, FinishEndsTheCaptureBeforeItReturns) {
  start();
  mirror.finish();
  EXPECT_EQ(screen.running, 0);
  start();
  mirror.stop();
  mirror.finish();
  EXPECT_EQ(screen.running, 0) << "also one whose end was still to come";
}

TEST_F(ScreenMirrorTest, TheLastFrameOfACaptureLeavesTheQualityOfTheNextAlone) {
  start(900, 12, 0.45);
  encoder.size = 500'000;
  encoder.whileEncoding = [&] { mirror.stop(); };
  screen.offer();
  clock.runDue();
  encoder.whileEncoding = nullptr;
  begin(900, 12, 0.45);
  clock.runDue();
  EXPECT_DOUBLE_EQ(quality(), 0.45);
}

TEST_F(ScreenMirrorTest, FramesOfACaptureThatWasStoppedAreNotDelivered) {
  start();
  mirror.stop();
  ScriptedFrame late;
  screen.offer(late);
  EXPECT_EQ(late.fetches, 0);
  EXPECT_THAT(frames, IsEmpty());
}

TEST_F(ScreenMirrorTest, AFrameThatIsBeingEncodedWhenTheCaptureIsStoppedIsNotDelivered) {
  start();
  encoder.whileEncoding = [&] { mirror.stop(); };
  screen.offer();
  EXPECT_THAT(encoder.qualities, SizeIs(1));
  EXPECT_THAT(frames, IsEmpty());
}

TEST_F(ScreenMirrorTest, AStopDuringAStartDoesNotEndIt) {
  begin(900);
  mirror.stop();
  clock.runDue();
  EXPECT_THAT(outcomes, ElementsAre(ScreenMirror::Outcome(Size{900, 720})));
  EXPECT_EQ(screen.running, 1);
  screen.offer();
  EXPECT_THAT(frames, SizeIs(1));
}

TEST_F(ScreenMirrorTest, FramesWaitUntilTheirSizeIsTold) {
  std::optional<FrameAnswer> early;
  screen.whileStarting = [&] { early = screen.offer(); };
  mirror.start(900, 12, 0.45, [&](const ScreenMirror::Outcome&) {
    EXPECT_EQ(screen.offer(), FrameAnswer::blocked);
    EXPECT_EQ(screen.resumes, 0);
  });
  clock.runDue();
  EXPECT_EQ(early, FrameAnswer::blocked);
  EXPECT_THAT(frames, IsEmpty());
  EXPECT_EQ(screen.resumes, 1) << "and are asked for then";
}

TEST_F(ScreenMirrorTest, ACaptureThatIsStoppedByWhoeverHearsOfItDeliversNothing) {
  mirror.start(900, 12, 0.45, [&](const ScreenMirror::Outcome&) { mirror.stop(); });
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
  screen.offer();
  EXPECT_THAT(frames, IsEmpty());
}

TEST_F(ScreenMirrorTest, ACaptureThatEndsByItselfIsLetGoOfSilently) {
  start();
  screen.fail();
  EXPECT_EQ(screen.running, 1) << "for it cannot go while it speaks";
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
  EXPECT_THAT(outcomes, SizeIs(1));
  start();
  screen.offer();
  EXPECT_THAT(frames, SizeIs(1));
}

TEST_F(ScreenMirrorTest, FramesGoToWhoeverReceivesThemNow) {
  start();
  int others = 0;
  mirror.setOnFrame([&](const SharedBytes&, const Task&) { ++others; });
  screen.offer();
  EXPECT_EQ(others, 1);
  EXPECT_THAT(frames, IsEmpty());
}

TEST_F(ScreenMirrorTest, AFrameMayArriveBeforeItsHandlerReturns) {
  start();
  int count = 0;
  mirror.setOnFrame([&](const SharedBytes&, const Task& done) {
    ++count;
    done();
  });
  for (int offered = 0; offered < 5; ++offered) EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_EQ(count, 5);
}

TEST_F(ScreenMirrorTest, AReceiverMayStopTheCapture) {
  start();
  mirror.setOnFrame([&](const SharedBytes&, const Task&) {
    mirror.setOnFrame(nullptr);
    mirror.stop();
  });
  screen.offer();
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
}

}  // namespace
}  // namespace orvel
