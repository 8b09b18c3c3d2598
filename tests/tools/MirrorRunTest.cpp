#include "desktop/TemporaryFolder.hpp"
#include "tools/JPEGPicture.hpp"
#include "tools/MirrorRun.hpp"
#include "tools/ScriptedHost.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace orvel::phone {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr Seconds limit{5};
constexpr MirrorPace patient{.limit = limit, .line = limit};
constexpr const char* ready = R"({"t":"mirrorReady","width":320,"height":200})";
const PhoneMessage start{true, R"({"t":"mirrorStart"})"};
const PhoneMessage stop{true, R"({"t":"mirrorStop"})"};

/// A viewer that has had enough after so many frames.
struct CountingViewer final : MirrorViewer {
  void show(std::string_view jpeg) override { shown.emplace_back(jpeg); }
  void report(const std::string& line) override { lines.push_back(line); }
  bool wantsMore() override { return shown.size() < enoughFrames && lines.size() < enoughLines; }

  std::size_t enoughFrames = std::numeric_limits<std::size_t>::max();
  std::size_t enoughLines = std::numeric_limits<std::size_t>::max();
  std::vector<std::string> shown;
  std::vector<std::string> lines;
};

/// A mirror of a host that sends `frames` once it has been asked, as binary messages.
struct MirrorRunTest : testing::Test {
  Failure mirror(const step::Mirror& mirror, const MirrorPace& pace = patient) {
    ScriptedHost host([this](HostEnd& end) { serve(end); });
    auto phone = PhoneClient::connect("127.0.0.1", host.port(), limit);
    if (!phone) return phone.error();
    MirrorRun run(*phone, viewer, mirror, pace);
    auto failure = run.carryOut();
    report = run.report();
    phone->hangUp();
    return failure;
  }

  void serve(HostEnd& end) {
    for (auto message = end.read(); !message.payload.empty(); message = end.read()) {
      heard.push_back(message);
      if (message == start) {
        end.send(answer);
        for (const std::string& frame : frames) end.sendBinary(frame);
        if (hangsUp) return end.hangUp();
      }
      if (message.payload == R"({"t":"ping"})") end.send(R"({"t":"pong"})");
    }
  }

  static std::string frame(const Picture& picture) { return "\x80" + jpegOf(picture, 50); }
  static std::string frame() { return frame(uniform(320, 200, 128)); }

  std::string contentOf(const std::string& name) const {
    std::ifstream file(home.path() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TemporaryFolder home;
  CountingViewer viewer;
  std::string answer = ready;
  std::vector<std::string> frames;
  bool hangsUp = false;
  std::vector<PhoneMessage> heard;
  std::string report;
};

TEST_F(MirrorRunTest, GoesOnUntilItsViewerHasHadEnough) {
  frames = {frame(), frame(), frame()};
  viewer.enoughFrames = 2;
  EXPECT_FALSE(mirror({}));
  EXPECT_THAT(viewer.shown, ElementsAre(frames[0].substr(1), frames[1].substr(1)));
  ASSERT_THAT(heard, SizeIs(3));
  EXPECT_EQ(heard[0], start);
  EXPECT_EQ(heard[1], stop);
  EXPECT_THAT(report, AllOf(StartsWith("screen: 320x200\nframes: 2 in "),
                            HasSubstr("bytes: " + std::to_string(frames[0].size() - 1) + " a frame, "),
                            HasSubstr("age: known only when orvel-clock")));
}

TEST_F(MirrorRunTest, GoesOnUntilItsTimeIsOver) {
  frames = {frame()};
  EXPECT_FALSE(mirror({.seconds = 0.05}));
  EXPECT_THAT(viewer.shown, SizeIs(1));
  ASSERT_THAT(heard, SizeIs(3));
  EXPECT_EQ(heard[1], stop);
  EXPECT_THAT(report, ContainsRegex("frames: 1 in 0.[1-9]"));
}

TEST_F(MirrorRunTest, TellsHowOldTheFramesAre) {
  const auto before = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
  const WallTime shown = before - std::chrono::milliseconds(700);
  frames = {frame(cropped(Scene{.time = shown, .block = 10}.picture(), 320, 200)), frame()};
  viewer.enoughFrames = 2;
  EXPECT_FALSE(mirror({}));
  EXPECT_THAT(report, ContainsRegex("age: [7-9][0-9][0-9] ms at the median, .* of 1 frames"));
}

TEST_F(MirrorRunTest, TellsHowItGoes) {
  frames = {frame()};
  viewer.enoughLines = 3;
  EXPECT_FALSE(mirror({}, {.limit = limit, .line = Seconds(0)}));
  EXPECT_THAT(viewer.lines, SizeIs(3));
  EXPECT_THAT(viewer.lines, testing::Each(HasSubstr(" frames/s")));
}

TEST_F(MirrorRunTest, SavesTheFrames) {
  frames = {frame(), frame(uniform(320, 200, 0))};
  viewer.enoughFrames = 2;
  const auto folder = home.path() / "new";
  EXPECT_FALSE(mirror({.folder = folder.string()}));
  EXPECT_EQ(contentOf("new/frame-0001.jpg"), frames[0].substr(1));
  EXPECT_EQ(contentOf("new/frame-0002.jpg"), frames[1].substr(1));
  EXPECT_THAT(report, HasSubstr("saved: 2 in " + folder.string()));
}

TEST_F(MirrorRunTest, DoesNotAskForWhatItCannotSave) {
  std::ofstream(home.path() / "file") << "in the way";
  const auto failure = mirror({.folder = (home.path() / "file").string()});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::local);
  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(MirrorRunTest, EndsWhenAFrameCannotBeSaved) {
  frames = {frame(), frame()};
  std::filesystem::create_symlink("/dev/full", home.path() / "frame-0001.jpg.part");
  const auto failure = mirror({.folder = home.path().string()});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::local);
  EXPECT_THAT(failure->text, HasSubstr("frame-0001.jpg"));
  ASSERT_THAT(heard, SizeIs(3));
  EXPECT_EQ(heard[1], stop);
}

TEST_F(MirrorRunTest, SaysWhyItWasDenied) {
  answer = R"({"t":"mirrorDenied","reason":"Not here."})";
  const auto failure = mirror({});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::denied);
  EXPECT_EQ(failure->text, "Not here.");
  EXPECT_EQ(report, "");
  EXPECT_THAT(heard, ElementsAre(start));
}

TEST_F(MirrorRunTest, SaysThatNoFrameHasCome) {
  const auto failure = mirror({}, {.limit = Seconds(0.1), .line = limit});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
  EXPECT_THAT(failure->text, HasSubstr("no frame"));
  EXPECT_THAT(report, HasSubstr("frames: 0"));
}

TEST_F(MirrorRunTest, SaysSoAlsoWhenItWasToEndSooner) {
  const auto failure = mirror({.seconds = 0.01});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
}

TEST_F(MirrorRunTest, AScreenThatStandsStillIsNoFault) {
  frames = {frame()};
  EXPECT_FALSE(mirror({.seconds = 0.6}, {.limit = Seconds(0.5), .line = limit}));
}

TEST_F(MirrorRunTest, AViewerMayLeaveBeforeTheFirstFrame) {
  viewer.enoughFrames = 0;
  EXPECT_FALSE(mirror({}));
  EXPECT_THAT(report, HasSubstr("frames: 0"));
}

TEST_F(MirrorRunTest, LeavesOutWhatIsNoFrameAndSaysSo) {
  const std::string good = frame();
  frames = {good.substr(1), frame(uniform(200, 320, 0)), "\x80\xff\xd8\xff \xff\xd9", good};
  viewer.enoughFrames = 1;
  EXPECT_FALSE(mirror({}));
  EXPECT_THAT(viewer.shown, ElementsAre(good.substr(1)));
  EXPECT_THAT(report, AllOf(HasSubstr("frames: 1 in"),
                            HasSubstr("left out: 3, the first was a binary message without the marker of a frame\n")));
}

TEST_F(MirrorRunTest, SaysWhatCameInPlaceOfFrames) {
  frames = {frame(uniform(200, 320, 0))};
  const auto failure = mirror({.seconds = 0.05});
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->text, HasSubstr("a frame of 200x320 instead of 320x200 pixels"));
}

TEST_F(MirrorRunTest, ReportsWhatCameBeforeTheConnectionWasLost) {
  frames = {frame(), frame()};
  hangsUp = true;
  const auto failure = mirror({});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::ended);
  EXPECT_THAT(report, HasSubstr("frames: 2 in"));
}

}  // namespace
}  // namespace orvel::phone
