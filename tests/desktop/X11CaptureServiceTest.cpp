#include "desktop/CaptureFixture.hpp"
#include "desktop/StoppedServer.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <thread>
#include <tuple>

namespace orvel {
namespace {

constexpr std::uint32_t background = 0x204060;
constexpr std::uint32_t orange = 0xff8000;
constexpr CaptureConfiguration fullSize{.width = 1280, .height = 800, .framesPerSecond = 30};

auto shows(std::uint32_t colour, int x, int y) {
  return [=](const Picture& picture) { return x < picture.width && y < picture.height && picture.at(x, y) == colour; };
}

/// A desktop whose cursor is out of the way, in the right bottom corner.
struct X11CaptureServiceTest : Scene, testing::Test {
  X11CaptureServiceTest() { painter.movePointer(1279, 799); }
};

/// Draws something new all the time, as a video does, and much faster.
class Video {
 public:
  explicit Video(Painter& painter, int x = 0) : thread_([this, &painter, x] { play(painter, x); }) {}
  ~Video() {
    ended_ = true;
    thread_.join();
  }
  Video(const Video&) = delete;
  Video& operator=(const Video&) = delete;

 private:
  void play(Painter& painter, int x) {
    for (std::uint32_t colour = 0; !ended_; ++colour) {
      painter.fill(x, 0, 100, 100, colour);
      std::this_thread::sleep_for(Milliseconds(2));
    }
  }

  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

TEST_F(X11CaptureServiceTest, ThereIsOneDisplayWhereThereIsOneMonitor) {
  EXPECT_EQ(content()->displays(), (std::vector<Size>{{1280, 800}}));
}

TEST_F(X11CaptureServiceTest, ThePrimaryMonitorIsTheMainDisplay) {
  ASSERT_TRUE(setMonitor("LEFT", "600/160x500/130+0+0", "screen"));
  ASSERT_TRUE(setMonitor("*RIGHT", "400/106x700/185+600+0", "none"));
  EXPECT_EQ(content()->displays(), (std::vector<Size>{{400, 700}, {600, 500}}));
}

TEST_F(X11CaptureServiceTest, TheFirstFrameComesAtOnceAndIsWhatIsOnTheScreen) {
  Picture page = pageOfText(1280, 800);
  painter.show(page);
  const auto stream = start(fullSize);
  ASSERT_NE(stream, nullptr);
  ASSERT_TRUE(receiver.waitForCount(1));
  Picture seen = receiver.picture();
  page.fill(1260, 780, 20, 20, 0);
  seen.fill(1260, 780, 20, 20, 0);  // where the cursor is
  EXPECT_TRUE(seen == page);
}

TEST_F(X11CaptureServiceTest, FramesHaveTheSizeThatWasAgreedOn) {
  const auto stream = start({.width = 901, .height = 333, .framesPerSecond = 30});
  ASSERT_TRUE(receiver.waitForCount(1));
  EXPECT_EQ(receiver.picture().width, 901);
  EXPECT_EQ(receiver.picture().height, 333);
  EXPECT_EQ(receiver.picture().at(450, 166), background) << "the average of one colour is that colour";
}

TEST_F(X11CaptureServiceTest, AStillScreenCostsNothing) {
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  const auto frames = receiver.settle();
  const long sleeps = receiver.sleeps();
  EXPECT_FALSE(receiver.waitForCount(frames + 1, 20 * lull));
  EXPECT_EQ(receiver.sleeps(), sleeps);
  EXPECT_GT(sleeps, 0);
  EXPECT_LE(frames, 2u);
}

TEST_F(X11CaptureServiceTest, AChangeComesAtOnce) {
  const auto stream = start({.width = 1280, .height = 800, .framesPerSecond = 1});
  ASSERT_TRUE(receiver.waitForCount(1));
  std::this_thread::sleep_for(Milliseconds(1200));
  const auto begin = std::chrono::steady_clock::now();
  painter.fill(90, 90, 20, 20, orange);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 100, 100)));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(500)) << "it does not wait for the next second";
  EXPECT_EQ(receiver.picture().at(89, 89), background);
  EXPECT_EQ(receiver.picture().at(110, 110), background);
}

TEST_F(X11CaptureServiceTest, WhatChangedAfterAFrameComesWithTheNext) {
  const auto stream = start({.width = 1280, .height = 800, .framesPerSecond = 2});
  for (std::uint32_t colour = 1; colour < 6; ++colour) {
    painter.fill(0, 0, 100, 100, colour);
    ASSERT_TRUE(receiver.waitForPicture(shows(colour, 50, 50))) << colour;
    painter.fill(0, 0, 100, 100, orange);
    ASSERT_TRUE(receiver.waitForPicture(shows(orange, 50, 50))) << colour;
  }
}

TEST_F(X11CaptureServiceTest, NoChangeIsMissedWhateverItsMoment) {
  const auto stream = start({.width = 1280, .height = 800, .framesPerSecond = 30});
  ASSERT_TRUE(receiver.waitForCount(1));
  for (int change = 1; change <= 200; ++change) {
    // Around the moment when it has nothing more to show and goes to sleep.
    std::this_thread::sleep_for(std::chrono::microseconds(31'000 + change * 7919 % 5000));
    const auto colour = static_cast<std::uint32_t>(change);
    painter.fill(0, 0, 100, 100, colour);
    ASSERT_TRUE(receiver.waitForPicture(shows(colour, 50, 50), Milliseconds(3000))) << change;
  }
}

TEST_F(X11CaptureServiceTest, AFrameThatWasNotTakenIsOfferedAgain) {
  receiver.answerWith(FrameAnswer::again);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(3));
  painter.fill(0, 0, 100, 100, orange);
  receiver.answerWith(FrameAnswer::taken);
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 50, 50)));
  EXPECT_LE(receiver.settle(), 20u);
}

TEST_F(X11CaptureServiceTest, AFrameThatWasTakenUnseenIsNotOfferedAgain) {
  painter.movePointer(600, 600);
  std::atomic<int> frames = 0;
  const auto shareable = content();
  const auto stream = shareable->start(0, fullSize,
                                       {.frame =
                                            [&](CapturedFrame&) {
                                              ++frames;
                                              return FrameAnswer::taken;
                                            },
                                        .stopped = [] {}});
  std::this_thread::sleep_for(5 * lull);
  EXPECT_GE(frames, 1);
  EXPECT_LE(frames, 2);
}

TEST_F(X11CaptureServiceTest, WhoWaitsIsOfferedNothingUntilTheyGoOn) {
  receiver.answerWith(FrameAnswer::blocked);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  std::this_thread::sleep_for(lull);
  const long sleeps = receiver.sleeps();
  {
    const Video video(painter);
    EXPECT_FALSE(receiver.waitForCount(2, 5 * lull));
  }
  painter.movePointer(300, 300);
  EXPECT_LE(receiver.sleeps(), sleeps + 2) << "for all that was drawn is reported once";
  painter.fill(0, 0, 100, 100, orange);
  receiver.answerWith(FrameAnswer::taken);
  stream->resume();
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 50, 50)));
}

TEST_F(X11CaptureServiceTest, WhoWaitedIsOfferedAFrameAtOnce) {
  receiver.answerWith(FrameAnswer::blocked);
  const auto stream = start({.width = 1280, .height = 800, .framesPerSecond = 1});
  ASSERT_TRUE(receiver.waitForCount(1));
  receiver.answerWith(FrameAnswer::taken);
  stream->resume();
  EXPECT_TRUE(receiver.waitForCount(2, Milliseconds(700))) << "and need not wait for a second";
}

TEST_F(X11CaptureServiceTest, ToGoOnWhileTheAnswerIsOnItsWayIsNotLost) {
  std::promise<CaptureStream*> started;
  auto stream = started.get_future().share();
  std::atomic<int> frames = 0;
  const auto shareable = content();
  auto result = shareable->start(0, fullSize,
                                 {.frame =
                                      [&](CapturedFrame&) {
                                        ++frames;
                                        stream.get()->resume();
                                        return FrameAnswer::blocked;
                                      },
                                  .stopped = [] {}});
  started.set_value(std::get<std::unique_ptr<CaptureStream>>(result).get());
  const Deadline deadline(timeout);
  while (frames < 5 && deadline.left() > Milliseconds(0)) std::this_thread::yield();
  EXPECT_GE(frames, 5);
}

struct RateTest : X11CaptureServiceTest, testing::WithParamInterface<int> {};

TEST_P(RateTest, ContinuousChangeComesAtTheRateThatWasAgreedOn) {
  constexpr int seconds = 3;
  const Video video(painter);
  auto stream = start({.width = 320, .height = 240, .framesPerSecond = GetParam()});
  ASSERT_TRUE(receiver.waitForCount(1));
  std::this_thread::sleep_for(std::chrono::seconds(seconds + 1));
  stream.reset();
  const auto times = receiver.times();
  const auto frames = std::count_if(times.begin(), times.end(),
                                    [&](auto time) { return time - times.front() < std::chrono::seconds(seconds); });
  EXPECT_LE(frames, seconds * GetParam() + 1);
  EXPECT_GE(frames, seconds * GetParam() * 3 / 4) << "a busy computer may be very late now and then";
}

INSTANTIATE_TEST_SUITE_P(All, RateTest, testing::Values(12, 30));

TEST_F(X11CaptureServiceTest, TheCursorIsInThePicture) {
  painter.setCursor(16, 16, orange);
  painter.movePointer(200, 300);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 200, 300)));
  const Picture picture = receiver.picture();
  EXPECT_EQ(picture.at(199, 300), background);
  EXPECT_EQ(picture.at(200, 299), background);
  EXPECT_EQ(picture.at(215, 315), orange);
  EXPECT_EQ(picture.at(216, 315), background);
}

TEST_F(X11CaptureServiceTest, TheHotSpotOfTheCursorIsWhereThePointerIs) {
  painter.setCursor(16, 16, orange, 5);
  painter.movePointer(200, 300);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 200, 300)));
  const Picture picture = receiver.picture();
  EXPECT_EQ(picture.at(195, 295), orange);
  EXPECT_EQ(picture.at(194, 295), background);
  EXPECT_EQ(picture.at(210, 310), orange);
  EXPECT_EQ(picture.at(211, 310), background);
}

TEST_F(X11CaptureServiceTest, WhatWasDrawnInTwoPlacesWhileItWaitedIsAllInThePicture) {
  receiver.answerWith(FrameAnswer::again);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(2));
  painter.fill(0, 700, 100, 50, 0x00ff00);
  const auto before = receiver.count();
  ASSERT_TRUE(receiver.waitForCount(before + 2));
  painter.fill(0, 100, 100, 50, orange);
  ASSERT_TRUE(receiver.waitForCount(receiver.count() + 2));
  receiver.answerWith(FrameAnswer::taken);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 50, 120)));
  EXPECT_EQ(receiver.picture().at(50, 720), 0x00ff00u);
}

TEST_F(X11CaptureServiceTest, TheCursorMovesAndLeavesNoTrace) {
  painter.setCursor(16, 16, orange);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  for (int place = 100; place < 700; place += 100) {
    receiver.settle();
    painter.movePointer(place, place);
    ASSERT_TRUE(receiver.waitForPicture(shows(orange, place, place))) << place;
    EXPECT_EQ(receiver.picture().at(place - 100, place - 100), background);
  }
  painter.movePointer(1275, 795);
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 1279, 799))) << "a part of it is outside";
}

TEST_F(X11CaptureServiceTest, TheCursorIsFollowedAlsoWhenAProgramPutsItSomewhere) {
  painter.setCursor(16, 16, orange);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  for (int place = 100; place < 700; place += 100) {
    receiver.settle();
    painter.warpPointer(place, place);
    ASSERT_TRUE(receiver.waitForPicture(shows(orange, place, place))) << place;
  }
}

TEST_F(X11CaptureServiceTest, TheCursorChangesItsShape) {
  painter.setCursor(16, 16, orange);
  painter.movePointer(200, 300);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 200, 300)));
  receiver.settle();
  painter.setCursor(8, 8, 0x00ff00);
  EXPECT_TRUE(receiver.waitForPicture(shows(0x00ff00, 200, 300)));
  EXPECT_EQ(receiver.picture().at(210, 310), background);
}

TEST_F(X11CaptureServiceTest, AFastMouseWakesItForFramesAlone) {
  constexpr int movements = 1500;
  const auto stream = start({.width = 320, .height = 240, .framesPerSecond = 10});
  ASSERT_TRUE(receiver.waitForCount(1));
  const auto frames = receiver.settle();
  const long sleeps = receiver.sleeps();
  for (int i = 0; i < movements; ++i) {
    painter.movePointer(100 + i % 500, 100 + i % 300);
    std::this_thread::sleep_for(Milliseconds(1));
  }
  const auto more = receiver.settle() - frames;
  EXPECT_GE(more, 10u);
  EXPECT_LE(receiver.sleeps() - sleeps, 10 * static_cast<long>(more));
}

/// Two monitors side by side, 640 by 800 each.
struct TwoMonitorsTest : X11CaptureServiceTest {
  TwoMonitorsTest() {
    setMonitor("LEFT", "640/170x800/210+0+0", "screen");
    setMonitor("RIGHT", "640/170x800/210+640+0", "none");
  }
  static constexpr CaptureConfiguration halfSize{.width = 640, .height = 800, .framesPerSecond = 30};
};

TEST_F(TwoMonitorsTest, WhatHappensOnTheOtherCostsNoFrame) {
  painter.setCursor(16, 16, orange);
  painter.movePointer(1000, 400);
  const auto stream = start(halfSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  const auto frames = receiver.settle();
  {
    const Video video(painter, 640);
    painter.movePointer(900, 500);
    EXPECT_FALSE(receiver.waitForCount(frames + 1, 5 * lull));
  }
  painter.fill(0, 0, 100, 100, 0x00ff00);
  EXPECT_TRUE(receiver.waitForPicture(shows(0x00ff00, 50, 50)));
  painter.movePointer(600, 500);
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 600, 500)));
  painter.movePointer(900, 500);
  EXPECT_TRUE(receiver.waitForPicture(shows(background, 600, 500))) << "and out again";
}

TEST_F(TwoMonitorsTest, EitherCanBeCaptured) {
  painter.fill(640, 0, 640, 800, orange);
  painter.setCursor(16, 16, 0x00ff00);
  painter.movePointer(700, 400);
  const auto stream = start(halfSize, 1);
  ASSERT_TRUE(receiver.waitForPicture(shows(orange, 0, 0)));
  EXPECT_EQ(receiver.picture().at(639, 799), orange);
  EXPECT_EQ(receiver.picture().at(60, 400), 0x00ff00u);
}

TEST_F(TwoMonitorsTest, ACaptureGoesOnWhenTheMonitorsAreCutDifferently) {
  painter.fill(640, 0, 640, 800, orange);
  const auto stream = start(halfSize);
  ASSERT_TRUE(receiver.waitForPicture(shows(background, 639, 400)));
  ASSERT_EQ(desktop.run({"xrandr", "--delmonitor", "LEFT"}), 0);
  ASSERT_TRUE(setMonitor("*WHOLE", "1280/340x800/210+0+0", "screen"));
  EXPECT_TRUE(receiver.waitForPicture([](const Picture& picture) {
    return picture.at(310, 400) == background && picture.at(330, 400) == orange;
  })) << "the whole screen is now brought to the size of the frames";
  EXPECT_EQ(receiver.picture().width, 640);
  EXPECT_EQ(receiver.picture().height, 800);
}

TEST_F(TwoMonitorsTest, AMonitorThatReachesBeyondTheScreenIsShownAsFarAsThereIsAScreen) {
  ASSERT_TRUE(setMonitor("*BEYOND", "1000/340x800/210+900+0", "none"));
  painter.fill(900, 0, 380, 800, orange);
  const auto stream = start(halfSize);
  EXPECT_TRUE(receiver.waitForPicture(
      [](const Picture& picture) { return picture.at(0, 400) == orange && picture.at(630, 400) == orange; }));
}

TEST_F(TwoMonitorsTest, ACaptureWaitsForItsMonitorToComeBack) {
  ASSERT_TRUE(setMonitor("THIRD", "200/50x200/50+0+0", "none"));
  const auto stream = start(halfSize, 2);
  ASSERT_TRUE(receiver.waitForPicture(shows(background, 320, 400)));
  ASSERT_EQ(desktop.run({"xrandr", "--delmonitor", "RIGHT"}), 0);
  ASSERT_EQ(desktop.run({"xrandr", "--delmonitor", "THIRD"}), 0);
  // The server reports monitors that come, not those that go.
  ASSERT_TRUE(setMonitor("RIGHT", "640/170x800/210+640+0", "none"));
  const auto frames = receiver.settle();
  const long sleeps = receiver.sleeps();
  painter.fill(0, 0, 1280, 800, orange);
  painter.movePointer(100, 100);
  EXPECT_FALSE(receiver.waitForCount(frames + 1, 5 * lull));
  EXPECT_LE(receiver.sleeps(), sleeps + 2);
  ASSERT_TRUE(setMonitor("THIRD", "200/50x200/50+640+0", "none"));
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 320, 400)));
}

/// A screen that can be switched to other sizes.
struct ResizedScreenTest : X11CaptureServiceTest {
  ResizedScreenTest() {
    addMode({"small", "25", "640", "656", "720", "840", "480", "481", "484", "500"});
    addMode({"middle", "50", "1024", "1048", "1184", "1344", "768", "771", "777", "806"});
  }

  void addMode(std::vector<std::string> mode) const {
    const std::string name = mode.front();
    mode.insert(mode.begin(), {"xrandr", "--newmode"});
    EXPECT_EQ(desktop.run(mode), 0);
    EXPECT_EQ(desktop.run({"xrandr", "--addmode", "screen", name}), 0);
  }

  bool switchTo(const std::string& mode) const {
    return desktop.run({"xrandr", "--output", "screen", "--mode", mode}) == 0;
  }
};

TEST_F(ResizedScreenTest, ACaptureGoesOnAtTheSizeThatWasAgreedOn) {
  const auto stream = start(fullSize);
  for (const auto& [mode, width, height] :
       {std::tuple{"small", 640, 480}, {"1280x800", 1280, 800}, {"middle", 1024, 768}}) {
    ASSERT_TRUE(switchTo(mode));
    painter.fill(0, 0, 1280, 800, background);
    painter.fill(width - 60, height - 60, 60, 60, orange);
    EXPECT_TRUE(receiver.waitForPicture([](const Picture& picture) {
      return picture.at(1225, 745) == orange && picture.at(1100, 700) == background;
    })) << mode;
    EXPECT_EQ(receiver.picture().width, 1280);
    EXPECT_EQ(receiver.picture().height, 800);
  }
}

TEST_F(ResizedScreenTest, WithoutAMonitorThereIsNoDisplayAndACaptureWaits) {
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForPicture(shows(background, 1000, 700)));
  desktop.run({"xrandr", "--fb", "1024x768"});
  EXPECT_EQ(content()->displays(), std::vector<Size>());
  const auto frames = receiver.settle();
  painter.fill(0, 0, 1280, 800, orange);
  EXPECT_FALSE(receiver.waitForCount(frames + 1, 5 * lull));
  ASSERT_TRUE(switchTo("small"));
  painter.fill(0, 0, 640, 480, orange);
  EXPECT_TRUE(receiver.waitForPicture(shows(orange, 1000, 700)));
}

TEST_F(ResizedScreenTest, SwitchingAllTheTimeIsSurvived) {
  receiver.answerWith(FrameAnswer::taken);
  const auto stream = start({.width = 333, .height = 244, .framesPerSecond = 30});
  const Video video(painter);
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(switchTo(i % 2 == 0 ? "small" : "1280x800"));
  const auto frames = receiver.count();
  EXPECT_TRUE(receiver.waitForCount(frames + 5));
  EXPECT_FALSE(receiver.waitForEnd(Milliseconds(0)));
}

TEST_F(X11CaptureServiceTest, TheEndOfTheServerEndsTheCapture) {
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  receiver.settle();
  desktop.killServer();
  EXPECT_TRUE(receiver.waitForEnd());
  stream->resume();
}

TEST_F(X11CaptureServiceTest, TheEndOfTheServerIsNoticedByWhoWaits) {
  receiver.answerWith(FrameAnswer::blocked);
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  desktop.killServer();
  EXPECT_TRUE(receiver.waitForEnd());
}

TEST_F(X11CaptureServiceTest, AServerThatHangsDoesNotHoldUpTheEnd) {
  auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  painter.fill(0, 0, 100, 100, orange);
  const StoppedServer stopped(desktop);
  std::this_thread::sleep_for(2 * lull);
  const auto begin = std::chrono::steady_clock::now();
  stream.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
  EXPECT_FALSE(receiver.waitForEnd(lull)) << "who ends it needs no notice";
}

TEST_F(X11CaptureServiceTest, WhoWaitsForAServerThatHangsCanGiveUp) {
  const StoppedServer stopped(desktop);
  auto found = std::async(std::launch::async, [&] { return service.shareableContent(); });
  EXPECT_EQ(found.wait_for(lull), std::future_status::timeout);
  connection->shutDown();
  service.disconnect();
  ASSERT_EQ(found.wait_for(timeout), std::future_status::ready);
  EXPECT_EQ(std::get<CaptureFailure>(found.get()).description, "The desktop does not answer.");
}

TEST_F(X11CaptureServiceTest, AStartThatWaitsForAServerThatHangsCanBeGivenUp) {
  const auto shareable = content();
  const StoppedServer stopped(desktop);
  auto started = std::async(std::launch::async, [&] { return shareable->start(0, fullSize, receiver.handlers()); });
  EXPECT_EQ(started.wait_for(lull), std::future_status::timeout);
  service.disconnect();
  ASSERT_EQ(started.wait_for(timeout), std::future_status::ready);
  EXPECT_EQ(std::get<CaptureFailure>(started.get()).description, "The desktop does not answer.");
}

TEST_F(X11CaptureServiceTest, ManyCapturesLeaveNothingBehind) {
  const auto entriesOf = [](const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
  };
  const auto sharedMappings = [] {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    int count = 0;
    while (std::getline(maps, line)) count += line.find("memfd:") != std::string::npos;
    return count;
  };
  // Whatever makes its first thread may keep one of its own.
  ASSERT_NE(start(fullSize), nullptr);
  const auto descriptors = entriesOf("/proc/self/fd");
  const auto threads = entriesOf("/proc/self/task");
  for (std::size_t i = 0; i < 50; ++i) {
    const auto stream = start(fullSize);
    ASSERT_NE(stream, nullptr);
    if (i % 2 == 0) {
      ASSERT_TRUE(receiver.waitForCount(receiver.count() + 1));
    }
  }
  EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
  // The system forgets a thread a little later than those who have waited for its end.
  const Deadline deadline(timeout);
  while (entriesOf("/proc/self/task") > threads && deadline.left() > Milliseconds(0)) std::this_thread::yield();
  EXPECT_LE(entriesOf("/proc/self/task"), threads);
  EXPECT_EQ(sharedMappings(), 0);
}

/// What the receiver of JPEG images sees, measured against the exact average of the screen.
struct PictureQualityTest : testing::TestWithParam<Picture (*)(int, int)> {};

TEST_P(PictureQualityTest, AFrameLooksLikeTheScreen) {
  constexpr double usualQuality = 0.45;
  Scene scene({"-screen", "0", "1920x1080x24"});
  scene.painter.show(GetParam()(1920, 1080));
  scene.painter.setCursor(1, 1, 0x808080);
  const auto stream = scene.start({.width = 900, .height = 506, .framesPerSecond = 30});
  ASSERT_TRUE(scene.receiver.waitForCount(1));
  SystemJPEGEncoder encoder;
  const Picture exact = averaged(scene.painter.screen(), 900, 506);
  EXPECT_GE(similarity(scene.receiver.picture(), exact), 0.99);
  const auto image = encoder.encode(scene.receiver.picture().buffer(), usualQuality);
  ASSERT_TRUE(image);
  const auto seen = decodedJPEG(*image);
  ASSERT_TRUE(seen);
  EXPECT_GE(similarity(*seen, exact), 0.95);
}

INSTANTIATE_TEST_SUITE_P(All, PictureQualityTest, testing::Values(pageOfText, photograph));

/// Servers that lack something, or have it differently.
struct PoorServerTest : testing::TestWithParam<std::vector<std::string>> {};

TEST_P(PoorServerTest, ChangesAndTheCursorComeAndAStillScreenDoesNot) {
  Scene scene(GetParam());
  scene.painter.setCursor(16, 16, 0xffffff);
  scene.painter.movePointer(600, 600);
  const auto stream = scene.start(fullSize);
  ASSERT_NE(stream, nullptr);
  ASSERT_TRUE(scene.receiver.waitForPicture(shows(0xffffff, 600, 600)));
  EXPECT_LE(scene.receiver.settle(), 3u);
  scene.painter.fill(100, 100, 50, 50, 0xffffff);
  EXPECT_TRUE(scene.receiver.waitForPicture(shows(0xffffff, 149, 149)));
  EXPECT_FALSE(shows(0xffffff, 150, 150)(scene.receiver.picture()));
  scene.receiver.settle();
  scene.painter.movePointer(300, 300);
  EXPECT_TRUE(scene.receiver.waitForPicture(shows(0xffffff, 300, 300)));
  EXPECT_FALSE(shows(0xffffff, 600, 600)(scene.receiver.picture()));
}

INSTANTIATE_TEST_SUITE_P(All, PoorServerTest,
                         testing::Values(std::vector<std::string>{"-extension", "MIT-SHM"},
                                         std::vector<std::string>{"-extension", "DAMAGE"},
                                         std::vector<std::string>{"-extension", "DAMAGE", "-extension", "MIT-SHM"},
                                         std::vector<std::string>{"-extension", "RANDR"},
                                         std::vector<std::string>{"-screen", "0", "1280x800x16"}));

TEST(UnusualServerTest, WithoutXFixesChangesComeWithoutACursor) {
  Scene scene({"-extension", "XFIXES"});
  const auto stream = scene.start(fullSize);
  ASSERT_NE(stream, nullptr);
  ASSERT_TRUE(scene.receiver.waitForCount(1));
  scene.painter.fill(100, 100, 50, 50, orange);
  EXPECT_TRUE(scene.receiver.waitForPicture(shows(orange, 149, 149)));
}

TEST(UnusualServerTest, AColourDepthThatIsNotSupportedIsSaid) {
  Scene scene({"-screen", "0", "1280x800x8"});
  const auto shareable = scene.content();
  ASSERT_NE(shareable, nullptr);
  const auto started = shareable->start(0, fullSize, scene.receiver.handlers());
  ASSERT_TRUE(std::holds_alternative<CaptureFailure>(started));
  EXPECT_EQ(std::get<CaptureFailure>(started).description,
            "The colour depth of this computer's screen is not supported.");
}

TEST(UnusualServerTest, NoServerIsSaid) {
  Scene scene;
  scene.desktop.killServer();
  const auto found = scene.service.shareableContent();
  ASSERT_TRUE(std::holds_alternative<CaptureFailure>(found));
  EXPECT_EQ(std::get<CaptureFailure>(found).description, "The desktop does not answer.");
}

}  // namespace
}  // namespace orvel
