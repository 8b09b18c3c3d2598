#include "CaptureTest.hpp"
#include "fakes/FakeClock.hpp"
#include "frameworks/ScreenAccess.hpp"
#include "mirror/ScreenMirror.hpp"
#include "platform/macos/SystemCaptureService.hpp"
#include "platform/macos/SystemJPEGEncoder.hpp"
#include "platform/macos/SystemScreenRecordingAccess.hpp"

#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvel {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The rules of the mirror, driven through the leaves.
class CaptureRulesTest : public CaptureTest {
 protected:
  void SetUp() override {
    CaptureTest::SetUp();
    fake::screenAccess() = {.isGranted = true};
    world_ = std::make_unique<World>();
    world_->mirror.setOnFrame([this](SharedBytes jpeg, Task done) {
      frames_.push_back(std::move(jpeg));
      sent_.push_back(std::move(done));
    });
  }

  void TearDown() override {
    frames_.clear();
    world_.reset();
    CaptureTest::TearDown();
  }

  void begin(std::int64_t maxWidth = 900, std::int64_t fps = 12, double quality = 0.45) {
    world_->mirror.start(maxWidth, fps, quality,
                         [this](const ScreenMirror::Outcome& outcome) { outcomes_.push_back(outcome); });
  }

  void start(std::int64_t maxWidth = 900, std::int64_t fps = 12, double quality = 0.45) {
    begin(maxWidth, fps, quality);
    run();
  }

  void run() { world_->clock.runDue(); }

  /// A frame is delivered and has arrived.
  void arrive(std::size_t at) {
    std::exchange(sent_.at(at), [] {})();
    fake::finishQueue();
  }

  void captureAndSend(std::size_t size = 300'000) {
    fake::imageCoding().size = size;
    const std::size_t count = sent_.size();
    fake::deliver({});
    if (sent_.size() > count) arrive(count);
  }

  Size size() const { return std::get<Size>(outcomes_.back()); }
  std::string failure() const { return std::get<std::string>(outcomes_.back()); }
  const fake::CaptureRequest& request() const { return fake::screenCapture().requests.back(); }

  struct World {
    FakeClock clock;
    FakeExecutor queue{clock};
    SystemScreenRecordingAccess access;
    SystemCaptureService capture;
    SystemJPEGEncoder encoder;
    ScreenMirror mirror{{.access = access, .capture = capture, .encoder = encoder, .queue = queue}};
  };

  std::unique_ptr<World> world_;
  std::vector<ScreenMirror::Outcome> outcomes_;
  std::vector<SharedBytes> frames_;
  std::vector<Task> sent_;
};

TEST_F(CaptureRulesTest, TheFirstDisplayIsScaledToTheWidth) {
  start(500);
  EXPECT_EQ(size(), (Size{500, 400}));
  EXPECT_EQ(request().display, 0u);
  EXPECT_EQ(request().width, 500u);
  EXPECT_EQ(request().height, 400u);
}

TEST_F(CaptureRulesTest, TheMainDisplayIsCapturedAlthoughItIsTheSecond) {
  fake::displayList().main = 2;
  start(5000);
  EXPECT_EQ(size(), (Size{640, 480}));
  EXPECT_EQ(request().display, 1u);
}

TEST_F(CaptureRulesTest, FramesAreNeverTooSmall) {
  start(1);
  EXPECT_EQ(size(), (Size{320, 240}));
  EXPECT_EQ(request().width, 320u);
  EXPECT_EQ(request().height, 240u);
}

TEST_F(CaptureRulesTest, FramesAreNeverLargerThanTheDisplay) {
  start(5000);
  EXPECT_EQ(size(), (Size{1000, 800}));
  EXPECT_EQ(request().width, 1000u);
  EXPECT_EQ(request().height, 800u);
}

TEST_F(CaptureRulesTest, TheRateIsKeptWithinBounds) {
  start(900, 0);
  EXPECT_EQ(request().intervalValue, 1);
  EXPECT_EQ(request().intervalScale, 1);
  start(900, 120);
  EXPECT_EQ(request().intervalValue, 1);
  EXPECT_EQ(request().intervalScale, 30);
}

TEST_F(CaptureRulesTest, WithoutPermissionTheServiceIsAskedNothing) {
  fake::screenAccess().isGranted = false;
  start();
  EXPECT_EQ(failure(), "Screen Recording is off for Orvel. Turn it on in Privacy & Security.");
  EXPECT_THAT(fake::screenCapture().calls, IsEmpty());
  EXPECT_EQ(fake::screenAccess().requests, 0);
}

TEST_F(CaptureRulesTest, WithoutADisplayThereIsNothingToCapture) {
  fake::screenCapture().displays = {};
  start();
  EXPECT_EQ(failure(), "No display available to capture.");
}

TEST_F(CaptureRulesTest, ErrorsOfTheSystemAreReportedInItsWords) {
  fake::screenCapture().content.error = "Declined.";
  start();
  EXPECT_EQ(failure(), "Declined.");
  fake::screenCapture().content.error.reset();
  fake::screenCapture().outputError = "No output.";
  start();
  EXPECT_EQ(failure(), "No output.");
  fake::screenCapture().outputError.reset();
  fake::screenCapture().start.error = "Failed to start.";
  start();
  EXPECT_EQ(failure(), "Failed to start.");
}

TEST_F(CaptureRulesTest, OnlyCompleteFramesOfTheScreenAreSent) {
  start();
  for (const int status : {1, 2, 3, 4, 5}) fake::deliver({.status = status});
  fake::deliver({.type = fake::Sample::Type::audio});
  fake::deliver({.isValid = false});
  fake::deliver({.hasPixels = false});
  EXPECT_THAT(frames_, IsEmpty());
  EXPECT_THAT(fake::imageCoding().qualities, IsEmpty());
  fake::deliver({});
  EXPECT_THAT(frames_, SizeIs(1));
}

TEST_F(CaptureRulesTest, FramesOfWhichNothingIsSaidCountAsComplete) {
  start();
  fake::deliver({.status = fake::Sample::NoAttachments{}});
  arrive(0);
  fake::deliver({.status = fake::Sample::NoStatus{}});
  arrive(1);
  fake::deliver({.status = "complete"});
  EXPECT_THAT(frames_, SizeIs(3));
}

TEST_F(CaptureRulesTest, AFrameThatCameBeforeTheStartWasDoneIsSentAfterIt) {
  fake::screenCapture().whileStarting = [this] {
    fake::deliver({});
    EXPECT_THAT(frames_, IsEmpty());
  };
  start();
  fake::finishQueue();
  EXPECT_THAT(frames_, SizeIs(1));
}

TEST_F(CaptureRulesTest, TwoFramesAreOnTheirWayAndTheLastPictureOfAStillScreenFollows) {
  start();
  for (const std::size_t width : {1, 2, 3, 4}) fake::deliver({.width = width});
  EXPECT_THAT(frames_, SizeIs(2));
  EXPECT_THAT(fake::imageCoding().qualities, SizeIs(2)) << "what is dropped is not encoded";
  for (int count = 0; count < 3; ++count) fake::deliver({.status = fake::idle, .hasPixels = false});
  EXPECT_THAT(frames_, SizeIs(2));
  arrive(0);
  EXPECT_THAT(frames_, SizeIs(3));
  EXPECT_EQ(fake::livingSamples(), 0);
  arrive(1);
  EXPECT_THAT(frames_, SizeIs(3));
}

TEST_F(CaptureRulesTest, TheQualityFallsWithLargeFramesAndRisesSlowlyAgain) {
  start(900, 12, 0.45);
  captureAndSend(500'000);
  captureAndSend(300'000);
  captureAndSend(420'000);
  captureAndSend(210'000);
  captureAndSend(100'000);
  for (int count = 0; count < 4; ++count) captureAndSend(100'000);
  const auto& qualities = fake::imageCoding().qualities;
  const auto near = [](double quality) { return DoubleNear(quality, 1e-9); };
  EXPECT_THAT(qualities, ElementsAre(near(0.45), near(0.39), near(0.39), near(0.39), near(0.39), near(0.41), near(0.43),
                                     near(0.45), near(0.45)));
}

TEST_F(CaptureRulesTest, AFrameThatIsTooLargeIsMadeSmallerAlthoughTheScreenIsStill) {
  start(900, 10, 0.5);
  fake::imageCoding().size = 950'000;
  fake::deliver({});
  EXPECT_THAT(frames_, IsEmpty());
  fake::imageCoding().size = 300'000;
  fake::deliver({.status = fake::idle, .hasPixels = false});
  EXPECT_THAT(dispatch::letTimePass(), ElementsAre(0.1));
  fake::finishQueue();
  EXPECT_THAT(frames_, SizeIs(1));
  EXPECT_THAT(fake::imageCoding().qualities, ElementsAre(0.5, DoubleNear(0.44, 1e-9)));
}

TEST_F(CaptureRulesTest, AFrameIsTheImageItself) {
  start();
  fake::deliver({});
  ASSERT_THAT(frames_, SizeIs(1));
  EXPECT_EQ(frames_[0].data.get(), fake::imageCoding().bytes);
  EXPECT_EQ(frames_[0].size, 300'000u);
}

TEST_F(CaptureRulesTest, AStopEndsTheStream) {
  start();
  world_->mirror.stop();
  run();
  EXPECT_EQ(fake::screenCapture().calls.back(), "stop");
  fake::deliver({});
  EXPECT_THAT(frames_, IsEmpty());
}

TEST_F(CaptureRulesTest, AStartThatIsStoppedMeanwhileGoesOn) {
  fake::screenCapture().whileStarting = [this] { world_->mirror.stop(); };
  start();
  EXPECT_EQ(size(), (Size{900, 720}));
  fake::deliver({});
  EXPECT_THAT(frames_, SizeIs(1));
}

TEST_F(CaptureRulesTest, ANewStartEndsWhatRan) {
  start();
  start();
  EXPECT_THAT(fake::screenCapture().calls, ElementsAre("content on screen", "stream", "output", "start", "stop",
                                                       "content on screen", "stream", "output", "start"));
}

TEST_F(CaptureRulesTest, ACaptureThatEndedByItselfCanBeStartedAgain) {
  start();
  fake::failStream("The user stopped it.");
  fake::finishQueue();
  fake::deliver({});
  run();
  EXPECT_THAT(frames_, IsEmpty());
  EXPECT_THAT(outcomes_, SizeIs(1));
  start();
  fake::deliver({});
  EXPECT_THAT(frames_, SizeIs(1));
}

}  // namespace
}  // namespace orvel
