#include "fakes/SessionFixture.hpp"

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* start = R"({"t":"mirrorStart"})";
constexpr const char* stop = R"({"t":"mirrorStop"})";

struct ClientSessionMirrorTest : SessionFixture {
  ClientSessionMirrorTest() { screen.displays = {{1800, 900}}; }

  void SetUp() override { openAuthenticated(); }

  void say(FakeWire& wire, const std::string& json) {
    wire.text(json);
    clock.runDue();
  }
  void say(const std::string& json) { say(*phone, json); }

  /// The screen changes, and what comes of that has time to arrive.
  void change() {
    screen.offer();
    clock.runDue();
  }

  /// The answers about mirroring that a phone has got, as they stood on the wire.
  static std::vector<std::string> answers(const FakeWire& wire) {
    std::vector<std::string> texts;
    for (const auto& message : wire.received()) {
      if (message.at("t").as_string().starts_with("mirror")) texts.push_back(boost::json::serialize(message));
    }
    return texts;
  }

  struct Phone {
    std::shared_ptr<FakeWire> wire;
    std::shared_ptr<ClientSession> session;
  };

  Phone anotherPhone() {
    Phone other{.wire = std::make_shared<FakeWire>(clock), .session = nullptr};
    other.session = makeSession(other.wire);
    other.wire->open();
    clock.runDue();
    authenticate(*other.wire, "Other");
    return other;
  }
};

TEST_F(ClientSessionMirrorTest, StartsWithTheUsualValuesAndSaysTheSize) {
  say(start);
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorReady","width":900,"height":450})"));
  EXPECT_EQ(screen.configurations.at(0).framesPerSecond, 12);
  change();
  EXPECT_THAT(encoder.qualities, ElementsAre(0.45));
  EXPECT_THAT(hub->mirroring, ElementsAre(true));
}

TEST_F(ClientSessionMirrorTest, StartsWithTheValuesAskedFor) {
  say(R"({"t":"mirrorStart","width":600,"fps":25,"quality":0.7})");
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorReady","width":600,"height":300})"));
  EXPECT_EQ(screen.configurations.at(0).framesPerSecond, 25);
  change();
  EXPECT_THAT(encoder.qualities, ElementsAre(0.7));
}

TEST_F(ClientSessionMirrorTest, ValuesGoOnAsTheyAre) {
  say(R"({"t":"mirrorStart","width":-5,"fps":1000,"quality":7})");
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorReady","width":320,"height":240})"));
  EXPECT_EQ(screen.configurations.at(0).framesPerSecond, 30);
}

TEST_F(ClientSessionMirrorTest, NumbersCountWhenTheyAreIntegersHoweverTheyAreWritten) {
  const std::vector<std::pair<const char*, int>> cases = {{"600", 600},
                                                          {"600.0", 600},
                                                          {"6e2", 600},
                                                          {"0.6e3", 600},
                                                          {"600.5", 900},
                                                          {"\"600\"", 900},
                                                          {"\"wide\"", 900},
                                                          {"true", 900},
                                                          {"null", 900},
                                                          {"[600]", 900},
                                                          {"{}", 900},
                                                          {"-1", 320},
                                                          {"1e300", 900},
                                                          {"-1e300", 900},
                                                          {"1e19", 900},
                                                          {"9223372036854775807", 1800},
                                                          {"9223372036854775808", 900},
                                                          {"123456789012345678901234567890", 900},
                                                          {"-9223372036854775808", 320},
                                                          {"9223372036854775808.0", 900}};
  for (const auto& [written, width] : cases) {
    say(std::string(R"({"t":"mirrorStart","width":)") + written + "}");
    EXPECT_EQ(screen.configurations.back().width, width) << written;
  }
}

TEST_F(ClientSessionMirrorTest, FramesASecondAreReadLikeTheWidth) {
  const std::vector<std::pair<const char*, int>> cases = {{"20", 20},     {"20.0", 20}, {"20.5", 12},
                                                          {"\"20\"", 12}, {"0", 1},     {"false", 12}};
  for (const auto& [written, fps] : cases) {
    say(std::string(R"({"t":"mirrorStart","fps":)") + written + "}");
    EXPECT_EQ(screen.configurations.back().framesPerSecond, fps) << written;
  }
}

TEST_F(ClientSessionMirrorTest, TheQualityMayHaveAFractionOrNot) {
  const std::vector<std::pair<const char*, double>> cases = {
      {"0.3", 0.3},      {"1", 0.85},    {"0", 0.2},      {"3e-1", 0.3},
      {"\"0.3\"", 0.45}, {"true", 0.45}, {"1e300", 0.85}, {"99999999999999999999", 0.85}};
  for (const auto& [written, quality] : cases) {
    say(std::string(R"({"t":"mirrorStart","quality":)") + written + "}");
    change();
    EXPECT_DOUBLE_EQ(encoder.qualities.back(), quality) << written;
  }
}

TEST_F(ClientSessionMirrorTest, OfAKeyThatComesTwiceTheLastCounts) {
  say(R"({"t":"mirrorStart","width":600,"width":"x","fps":5,"fps":6,"x":{"fps":9,"width":700},"quality":0.3})");
  EXPECT_EQ(screen.configurations.back().width, 900);
  EXPECT_EQ(screen.configurations.back().framesPerSecond, 6);
}

TEST_F(ClientSessionMirrorTest, EachFrameIsTheMarkerAndTheImage) {
  say(start);
  encoder.size = 3;
  encoder.fill = 0xd8;
  change();
  ASSERT_THAT(phone->frames, SizeIs(1));
  EXPECT_EQ(phone->frames[0].marker, 0x80);
  EXPECT_EQ(phone->frames[0].image, "\xd8\xd8\xd8");
}

TEST_F(ClientSessionMirrorTest, TheSizeIsToldBeforeTheFirstFrame) {
  screen.whileStarting = [&] { EXPECT_EQ(screen.offer(), FrameAnswer::blocked); };
  phone->text(start);
  clock.runDue();
  EXPECT_THAT(answers(*phone), SizeIs(1));
  EXPECT_THAT(phone->frames, IsEmpty());
  EXPECT_EQ(screen.resumes, 1);
}

TEST_F(ClientSessionMirrorTest, AFrameThatHasArrivedMakesRoomForTheNext) {
  say(start);
  phone->stalled = true;
  for (int count = 0; count < 5; ++count) change();
  EXPECT_THAT(phone->frames, SizeIs(2));
  EXPECT_EQ(screen.resumes, 0);
  phone->unstall();
  EXPECT_EQ(screen.resumes, 1);
  change();
  EXPECT_THAT(phone->frames, SizeIs(3));
}

TEST_F(ClientSessionMirrorTest, WithoutPermissionThePhoneIsToldWhatToDoAndTheDesktopAsked) {
  screen.granted = false;
  std::size_t answeredWhenAsked = 0;
  screen.whileAsking = [&] { answeredWhenAsked = answers(*phone).size(); };
  say(start);
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorDenied","reason":"Screen Recording is off for Orvel. )"
                                           R"(Turn it on in Privacy & Security on the Mac, then try again."})"));
  EXPECT_EQ(screen.requests, 1);
  EXPECT_EQ(answeredWhenAsked, 1u) << "first the one, then the other";
  EXPECT_THAT(screen.configurations, IsEmpty());
  EXPECT_THAT(hub->mirroring, IsEmpty());
}

TEST_F(ClientSessionMirrorTest, WithoutPermissionAnothersCaptureGoesOn) {
  const Phone other = anotherPhone();
  say(*other.wire, start);
  screen.granted = false;
  say(start);
  EXPECT_THAT(answers(*phone), SizeIs(1));
  EXPECT_EQ(screen.running, 1);
  change();
  EXPECT_THAT(other.wire->frames, SizeIs(1));
  say(stop);
  EXPECT_EQ(screen.running, 1) << "for it is not this phone's to end";
}

TEST_F(ClientSessionMirrorTest, APermissionThatGoesMeanwhileIsToldOfInFewerWords) {
  screen.grantsLeft = 1;
  say(start);
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorDenied","reason":"Screen Recording is off for Orvel. )"
                                           R"(Turn it on in Privacy & Security."})"));
  EXPECT_EQ(screen.requests, 0);
}

TEST_F(ClientSessionMirrorTest, ReasonsOfTheDesktopAreHandedOn) {
  screen.displays.clear();
  say(start);
  screen.displays = {{100, 100}};
  screen.startFailure = "The stream does not start.";
  say(start);
  EXPECT_THAT(answers(*phone), ElementsAre(R"({"t":"mirrorDenied","reason":"No display available to capture."})",
                                           R"({"t":"mirrorDenied","reason":"The stream does not start."})"));
  EXPECT_THAT(hub->mirroring, IsEmpty());
  say(stop);
  EXPECT_THAT(hub->mirroring, IsEmpty()) << "as this session mirrors nothing";
}

TEST_F(ClientSessionMirrorTest, AStartThatFailsHasEndedWhatRan) {
  const Phone other = anotherPhone();
  say(*other.wire, start);
  screen.startFailure = "No.";
  say(start);
  EXPECT_EQ(screen.running, 0);
  EXPECT_THAT(answers(*other.wire), SizeIs(1)) << "of which the other is not notified";
  EXPECT_THAT(hub->mirroring, ElementsAre(true));
}

TEST_F(ClientSessionMirrorTest, StopEndsTheCapture) {
  say(start);
  say(stop);
  EXPECT_EQ(screen.running, 0);
  EXPECT_THAT(hub->mirroring, ElementsAre(true, false));
  EXPECT_THAT(answers(*phone), SizeIs(1)) << "and is not answered";
  change();
  EXPECT_THAT(phone->frames, IsEmpty());
}

TEST_F(ClientSessionMirrorTest, StopOfWhoMirrorsNothingDoesNothing) {
  const Phone other = anotherPhone();
  say(*other.wire, start);
  const auto before = phone->sent.size();
  say(stop);
  say(stop);
  EXPECT_EQ(phone->sent.size(), before);
  EXPECT_EQ(screen.running, 1);
  EXPECT_THAT(hub->mirroring, ElementsAre(true));
}

TEST_F(ClientSessionMirrorTest, AStrangerMayStopButNotStart) {
  const auto wire = std::make_shared<FakeWire>(clock);
  const auto stranger = makeSession(wire);
  wire->open();
  clock.runDue();
  say(*wire, stop);
  say(*wire, start);
  EXPECT_THAT(wire->received(), SizeIs(1)) << "hello";
  EXPECT_FALSE(wire->cancelled);
  EXPECT_THAT(screen.configurations, IsEmpty());
  EXPECT_EQ(screen.requests, 0);
}

TEST_F(ClientSessionMirrorTest, TheLastToStartWinsAndTheFirstIsNotTold) {
  const Phone other = anotherPhone();
  say(start);
  change();
  say(*other.wire, R"({"t":"mirrorStart","width":600})");
  EXPECT_EQ(screen.running, 1);
  change();
  EXPECT_THAT(phone->frames, SizeIs(1));
  EXPECT_THAT(other.wire->frames, SizeIs(1));
  EXPECT_THAT(answers(*phone), SizeIs(1));
  EXPECT_THAT(answers(*other.wire), ElementsAre(R"({"t":"mirrorReady","width":600,"height":300})"));
  say(stop);
  EXPECT_EQ(screen.running, 0) << "the first still ends it";
  EXPECT_THAT(answers(*other.wire), SizeIs(1)) << "and the other is not notified";
  EXPECT_THAT(hub->mirroring, ElementsAre(true, true, false));
  say(*other.wire, stop);
  EXPECT_THAT(hub->mirroring, ElementsAre(true, true, false, false));
}

TEST_F(ClientSessionMirrorTest, NoFrameOfTheFirstGoesToTheSecond) {
  const Phone other = anotherPhone();
  say(start);
  // The second phone starts while a frame of the first one's capture is being encoded.
  encoder.whileEncoding = [&] { other.wire->text(start); };
  screen.offer();
  clock.runDue();
  EXPECT_THAT(phone->frames, IsEmpty());
  EXPECT_THAT(other.wire->frames, IsEmpty());
  change();
  EXPECT_THAT(other.wire->frames, SizeIs(1));
}

TEST_F(ClientSessionMirrorTest, APhoneMayStartAnew) {
  say(start);
  phone->stalled = true;
  change();
  change();
  say(R"({"t":"mirrorStart","width":400,"fps":5,"quality":0.6})");
  EXPECT_EQ(screen.running, 1);
  EXPECT_THAT(answers(*phone), SizeIs(2));
  EXPECT_EQ(phone->drops, 2) << "each time, so that no frame of the old size comes behind the new one's";
  change();
  EXPECT_THAT(phone->frames, SizeIs(3)) << "with all of its room";
  EXPECT_DOUBLE_EQ(encoder.qualities.back(), 0.6);
}

TEST_F(ClientSessionMirrorTest, AnEarlierStartThatFailsLeavesALaterOneItsOwner) {
  screen.failuresLeft = 1;
  phone->text(start);
  phone->text(start);
  clock.runDue();
  EXPECT_THAT(answers(*phone), SizeIs(2));
  EXPECT_EQ(screen.running, 1);
  say(stop);
  EXPECT_EQ(screen.running, 0) << "which the phone can end";
}

TEST_F(ClientSessionMirrorTest, APhoneThatAsksAgainAndAgainIsServedAsFastAsItCanBe) {
  for (int count = 0; count < 5000; ++count) phone->text(start);
  EXPECT_LT(clock.pendingTasks(), 3000u) << "the other starts wait";
  clock.runDue();
  EXPECT_THAT(answers(*phone), SizeIs(5000)) << "and nothing is lost";
  EXPECT_EQ(screen.running, 1);
}

TEST_F(ClientSessionMirrorTest, FramesThatWaitAreDroppedAtTheStop) {
  say(start);
  const int before = phone->drops;
  say(stop);
  EXPECT_EQ(phone->drops, before + 1);
}

TEST_F(ClientSessionMirrorTest, APhoneThatLeavesEndsItsCapture) {
  say(start);
  phone->drop();
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
  EXPECT_THAT(hub->mirroring, ElementsAre(true, false));
  EXPECT_THAT(hub->left, SizeIs(1));
}

TEST_F(ClientSessionMirrorTest, APhoneThatLeavesEndsWhatItHasStartedWhoeverHasItNow) {
  const Phone other = anotherPhone();
  say(start);
  say(*other.wire, start);
  phone->drop();
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
  EXPECT_THAT(hub->mirroring, ElementsAre(true, true, false));
}

TEST_F(ClientSessionMirrorTest, APhoneThatMirrorsNothingLeavesTheCaptureAlone) {
  const Phone other = anotherPhone();
  say(*other.wire, start);
  phone->drop();
  clock.runDue();
  EXPECT_EQ(screen.running, 1);
  EXPECT_THAT(hub->mirroring, ElementsAre(true));
}

TEST_F(ClientSessionMirrorTest, TheHubHearsOfItBeforeThePhone) {
  std::vector<std::size_t> sentBefore;
  hub->whenMirroring = [&] { sentBefore.push_back(answers(*phone).size()); };
  say(start);
  EXPECT_THAT(sentBefore, ElementsAre(0u));
  EXPECT_THAT(answers(*phone), SizeIs(1));
}

TEST_F(ClientSessionMirrorTest, AStartAndItsEndNeedNoHub) {
  say(start);
  hub.reset();
  change();
  EXPECT_THAT(phone->frames, SizeIs(1));
  say(start);
  EXPECT_THAT(answers(*phone), SizeIs(2));
  say(stop);
  EXPECT_EQ(screen.running, 0);
  say(start);
  phone->drop();
  clock.runDue();
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ClientSessionMirrorTest, APongMayComeBeforeTheAnswerToAStart) {
  phone->text(start);
  phone->text(R"({"t":"ping"})");
  clock.runDue();
  std::vector<std::string> kinds;
  for (const auto& message : phone->received()) kinds.emplace_back(message.at("t").as_string());
  EXPECT_THAT(kinds, ElementsAre("hello", "ready", "pong", "mirrorReady"));
}

TEST_F(ClientSessionMirrorTest, AStartThatIsDoneAfterTheStopIsToldOf) {
  phone->text(start);
  phone->text(stop);
  clock.runDue();
  EXPECT_THAT(answers(*phone), SizeIs(1));
  EXPECT_THAT(hub->mirroring, ElementsAre(false, true));
  EXPECT_EQ(screen.running, 1);
  for (int count = 0; count < 4; ++count) change();
  EXPECT_THAT(encoder.qualities, SizeIs(2)) << "frames for nobody cost nothing for long";
}

TEST_F(ClientSessionMirrorTest, AStartThatIsDoneWhenThePhoneHasLeftIsNotToldOf) {
  phone->text(start);
  phone->drop();
  clock.runDue();
  EXPECT_THAT(answers(*phone), IsEmpty());
  EXPECT_THAT(hub->mirroring, ElementsAre(false));
  session.reset();
  for (int count = 0; count < 4; ++count) change();
  EXPECT_THAT(phone->frames, IsEmpty());
}

TEST_F(ClientSessionMirrorTest, ACaptureThatEndsByItselfIsNotToldOf) {
  say(start);
  screen.fail();
  clock.runDue();
  EXPECT_THAT(answers(*phone), SizeIs(1));
  EXPECT_THAT(hub->mirroring, ElementsAre(true));
  say(start);
  EXPECT_THAT(answers(*phone), SizeIs(2));
  change();
  EXPECT_THAT(phone->frames, SizeIs(1));
}

TEST_F(ClientSessionMirrorTest, AStrangerGetsNoFrameAndTakesNoRoom) {
  const auto wire = std::make_shared<FakeWire>(clock);
  const auto stranger = makeSession(wire);
  wire->open();
  clock.runDue();
  say(start);
  mirror.setOnFrame([&](SharedBytes jpeg, Task sent) { stranger->sendMirrorFrame(std::move(jpeg), std::move(sent)); });
  for (int count = 0; count < 5; ++count) EXPECT_EQ(screen.offer(), FrameAnswer::taken);
  EXPECT_THAT(wire->frames, IsEmpty());
}

TEST_F(ClientSessionMirrorTest, FramesOfASessionThatHasGoneAreDropped) {
  say(start);
  screen.offer();
  session.reset();
  clock.runDue();
  EXPECT_THAT(phone->frames, IsEmpty());
  screen.offer();
  EXPECT_EQ(screen.offer(), FrameAnswer::blocked) << "their room stays taken until the next start or stop";
}

}  // namespace
}  // namespace orvel
