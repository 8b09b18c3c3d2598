#include "BareThread.hpp"
#include "CaptureTest.hpp"
#include "platform/macos/SystemCaptureService.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;

class CaptureServiceTest : public CaptureTest {
 protected:
  std::unique_ptr<ShareableContent> content() {
    return std::get<std::unique_ptr<ShareableContent>>(service_.shareableContent());
  }

  std::string contentFailure() { return std::get<CaptureFailure>(service_.shareableContent()).description; }

  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display = 0) {
    return content()->start(display, {.width = 500, .height = 400, .framesPerSecond = 12},
                            {.frame = [](CapturedFrame&) { return FrameAnswer::taken; }, .stopped = [] {}});
  }

  std::string startFailure() { return std::get<CaptureFailure>(start()).description; }

  /// Gives up once the service has been called so often.
  std::jthread giveUpAfter(std::size_t calls) {
    return std::jthread([this, calls] {
      while (fake::callCount() < calls) std::this_thread::yield();
      service_.giveUp();
    });
  }

  SystemCaptureService service_;
};

TEST_F(CaptureServiceTest, DisplaysAreThoseOfTheSystemWithTheMainOneFirst) {
  fake::displayList().main = 7;
  fake::screenCapture().displays = {{2560, 1440, 9}, {800, 600, 3}, {1440, 900, 7}};
  EXPECT_THAT(content()->displays(), ElementsAre(Size{1440, 900}, Size{2560, 1440}, Size{800, 600}));
  EXPECT_THAT(fake::screenCapture().calls, ElementsAre("content on screen"));
}

TEST_F(CaptureServiceTest, TheDisplayThatIsCapturedIsTheOneOfItsNumber) {
  fake::displayList().main = 7;
  fake::screenCapture().displays = {{2560, 1440, 9}, {1440, 900, 7}};
  { const auto stream = start(0); }
  { const auto stream = start(1); }
  ASSERT_EQ(fake::screenCapture().requests.size(), 2u);
  EXPECT_EQ(fake::screenCapture().requests[0].display, 1u);
  EXPECT_EQ(fake::screenCapture().requests[1].display, 0u);
}

TEST_F(CaptureServiceTest, AMainDisplayThatCannotBeCapturedLeavesTheirOrder) {
  fake::displayList().main = 8;
  fake::screenCapture().displays = {{2560, 1440, 9}, {1440, 900, 7}};
  EXPECT_THAT(content()->displays(), ElementsAre(Size{2560, 1440}, Size{1440, 900}));
}

TEST_F(CaptureServiceTest, ThereMayBeNoDisplay) {
  fake::screenCapture().displays = {};
  EXPECT_TRUE(content()->displays().empty());
}

TEST_F(CaptureServiceTest, DeniedContentIsReportedInTheWordsOfTheSystem) {
  fake::screenCapture().content.error = "The user declined TCCs.";
  EXPECT_EQ(contentFailure(), "The user declined TCCs.");
}

TEST_F(CaptureServiceTest, NoContentWithoutAReasonIsAnErrorToo) {
  fake::screenCapture().hasContent = false;
  EXPECT_EQ(contentFailure(), "The system cannot capture the screen.");
}

TEST_F(CaptureServiceTest, AStreamIsMadeAsAgreed) {
  { const auto stream = start(1); }
  ASSERT_EQ(fake::screenCapture().requests.size(), 1u);
  const fake::CaptureRequest& request = fake::screenCapture().requests.front();
  EXPECT_EQ(request.display, 1u);
  EXPECT_EQ(request.excludedWindows, 0u);
  EXPECT_EQ(request.width, 500u);
  EXPECT_EQ(request.height, 400u);
  EXPECT_EQ(request.intervalValue, 1);
  EXPECT_EQ(request.intervalScale, 12);
  EXPECT_EQ(request.pixelFormat, 0x42475241u);
  EXPECT_TRUE(request.showsCursor);
  EXPECT_FALSE(request.preservesAspectRatio);
  EXPECT_EQ(request.queueDepth, 3);
  EXPECT_EQ(request.queueLabel, "orvel.mirror");
  EXPECT_EQ(request.queueQuality, 0x19u) << "user-initiated";
}

TEST_F(CaptureServiceTest, AStreamIsStartedAndStoppedInOrder) {
  { const auto stream = start(); }
  EXPECT_THAT(fake::screenCapture().calls, ElementsAre("content on screen", "stream", "output", "start", "stop"));
}

TEST_F(CaptureServiceTest, ItWorksOnAThreadWithoutAPool) {
  onBareThread([this] {
    EXPECT_EQ(content()->displays().size(), 2u);
    { const auto stream = start(); }
    EXPECT_EQ(fake::screenCapture().calls.back(), "stop");
  });
}

TEST_F(CaptureServiceTest, AStreamWithoutOutputIsNotStarted) {
  fake::screenCapture().outputError = "No more outputs.";
  EXPECT_EQ(startFailure(), "No more outputs.");
  EXPECT_THAT(fake::screenCapture().calls, ElementsAre("content on screen", "stream", "output"));
}

TEST_F(CaptureServiceTest, AStreamThatDoesNotStartIsNotStopped) {
  fake::screenCapture().start.error = "Failed to start.";
  EXPECT_EQ(startFailure(), "Failed to start.");
  EXPECT_THAT(fake::screenCapture().calls, ElementsAre("content on screen", "stream", "output", "start"));
}

TEST_F(CaptureServiceTest, ContentThatNeverComesIsGivenUp) {
  fake::screenCapture().content.comes = false;
  const std::jthread giving = giveUpAfter(1);
  EXPECT_EQ(contentFailure(), "The system does not answer.");
}

TEST_F(CaptureServiceTest, AStartThatNeverEndsIsGivenUpAndStopped) {
  fake::screenCapture().start.comes = false;
  fake::screenCapture().stop.comes = false;
  const std::jthread giving = giveUpAfter(4);
  EXPECT_EQ(startFailure(), "The system does not answer.");
  EXPECT_EQ(fake::screenCapture().calls.back(), "stop");
}

TEST_F(CaptureServiceTest, OnceGivenUpNothingIsWaitedFor) {
  service_.giveUp();
  fake::screenCapture().content.comes = false;
  EXPECT_EQ(contentFailure(), "The system does not answer.");
}

TEST_F(CaptureServiceTest, AnswersThatComeTooLateFindNobody) {
  fake::screenCapture().content.comes = false;
  {
    SystemCaptureService service;
    service.giveUp();
    EXPECT_TRUE(std::holds_alternative<CaptureFailure>(service.shareableContent()));
  }
  fake::answerHeldBack();
  fake::finishAnswers();
}

TEST_F(CaptureServiceTest, AStartThatEndsTooLateFindsNobody) {
  fake::screenCapture().start.comes = false;
  {
    const std::jthread giving = giveUpAfter(4);
    startFailure();
  }
  fake::answerHeldBack();
  fake::finishAnswers();
}

}  // namespace
}  // namespace orvel
