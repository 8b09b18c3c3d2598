#include "tools/MirrorSession.hpp"
#include "tools/ScriptedHost.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

namespace orvel::phone {
namespace {

using testing::HasSubstr;

constexpr Seconds limit{5};
constexpr Seconds shortly{0.02};
constexpr const char* ready = R"({"t":"mirrorReady","width":900,"height":506})";
const std::string jpeg = "\xff\xd8\xff picture \xff\xd9";
const std::string frame = "\x80" + jpeg;

/// A mirror of a host with this script.
struct Mirror {
  explicit Mirror(std::function<void(HostEnd&)> script)
      : host(std::move(script)), phone(PhoneClient::connect("127.0.0.1", host.port(), limit)), session(*phone) {}

  ScriptedHost host;
  Result<PhoneClient> phone;
  MirrorSession session;
};

/// A mirror whose host grants it and then goes on with this script.
struct GrantedMirror : Mirror {
  explicit GrantedMirror(const std::function<void(HostEnd&)>& script)
      : Mirror([script](HostEnd& end) {
          end.read();
          end.send(ready);
          script(end);
        }) {
    EXPECT_TRUE(session.start({}, limit));
  }
};

TEST(MirrorSession, AsksForNoMoreThanItWishes) {
  PhoneMessage first;
  PhoneMessage second;
  Mirror mirror([&](HostEnd& host) {
    first = host.read();
    host.send(ready);
    second = host.read();
    host.send(R"({"t":"mirrorReady","width":400,"height":300})");
  });
  EXPECT_EQ(*mirror.session.start({}, limit), (MirrorSize{900, 506}));
  EXPECT_EQ(*mirror.session.start({.width = 400, .fps = 30, .quality = 0.5}, limit), (MirrorSize{400, 300}));
  mirror.host.join();
  EXPECT_EQ(first, (PhoneMessage{true, R"({"t":"mirrorStart"})"}));
  EXPECT_EQ(second, (PhoneMessage{true, R"({"t":"mirrorStart","width":400,"fps":30,"quality":5E-1})"}));
}

TEST(MirrorSession, SaysWhyItWasDenied) {
  Mirror mirror([](HostEnd& host) {
    host.read();
    host.send(R"({"t":"pong"})");
    host.send(R"({"t":"mirrorDenied","reason":"Not here."})");
  });
  const auto size = mirror.session.start({}, limit);
  ASSERT_FALSE(size);
  EXPECT_EQ(size.error().kind, Error::Kind::denied);
  EXPECT_EQ(size.error().text, "Not here.");
}

TEST(MirrorSession, DoesNotWaitForEverForAnAnswer) {
  Mirror mirror([](HostEnd& host) { host.waitForGoodbye(); });
  const auto size = mirror.session.start({}, shortly);
  mirror.phone->hangUp();
  ASSERT_FALSE(size);
  EXPECT_EQ(size.error().kind, Error::Kind::timedOut);
  EXPECT_THAT(size.error().text, HasSubstr("whether it mirrors"));
}

TEST(MirrorSession, TakesNoSizeThatMakesNoSense) {
  for (const char* answer :
       {R"({"t":"mirrorReady"})", R"({"t":"mirrorReady","width":0,"height":506})",
        R"({"t":"mirrorReady","width":900,"height":16385})", R"({"t":"mirrorReady","width":900,"height":"506"})",
        R"({"t":"mirrorReady","width":900,"height":9223372036854775807})"}) {
    Mirror mirror([&](HostEnd& host) {
      host.read();
      host.send(answer);
    });
    const auto size = mirror.session.start({}, limit);
    ASSERT_FALSE(size) << answer;
    EXPECT_EQ(size.error().kind, Error::Kind::unexpected);
  }
}

TEST(MirrorSession, GivesOneFrameAfterAnotherWithTheTimeOfItsArrival) {
  GrantedMirror mirror([](HostEnd& host) {
    host.sendBinary(frame);
    host.sendBinary("\x80\xff\xd8\xff second \xff\xd9");
  });
  const auto before = std::chrono::steady_clock::now();
  const auto wallBefore = std::chrono::system_clock::now();
  const auto first = mirror.session.next(limit);
  const auto second = mirror.session.next(limit);
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->jpeg(), jpeg);
  EXPECT_EQ(second->jpeg(), "\xff\xd8\xff second \xff\xd9");
  EXPECT_LE(before, first->arrival().steady);
  EXPECT_LE(first->arrival().steady, second->arrival().steady);
  EXPECT_LE(second->arrival().steady, std::chrono::steady_clock::now());
  EXPECT_LE(wallBefore, first->arrival().wall);
  EXPECT_LE(second->arrival().wall, std::chrono::system_clock::now());
}

TEST(MirrorSession, KeepsTheFrameThatWasFasterThanTheAnswer) {
  Mirror mirror([](HostEnd& host) {
    host.read();
    host.sendBinary("\x80\xff\xd8\xff old \xff\xd9");
    host.sendBinary(frame);
    host.send(ready);
  });
  ASSERT_TRUE(mirror.session.start({}, limit));
  const auto early = mirror.session.next(limit);
  ASSERT_TRUE(early);
  EXPECT_EQ(early->jpeg(), jpeg);
  const auto none = mirror.session.next(limit);
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().kind, Error::Kind::ended);
}

TEST(MirrorSession, OtherMessagesMayComeBetweenFrames) {
  GrantedMirror mirror([](HostEnd& host) {
    host.send(R"({"t":"pong"})");
    host.send("no json");
    host.send(R"({"t":"permission","accessibility":false})");
    host.sendBinary(frame);
  });
  EXPECT_TRUE(mirror.session.next(limit));
}

TEST(MirrorSession, AWaitThatWasInVainCostsNothing) {
  GrantedMirror mirror([](HostEnd& host) {
    host.read();
    host.sendBinary(frame);
  });
  const auto none = mirror.session.next(shortly);
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().kind, Error::Kind::timedOut);
  EXPECT_FALSE(mirror.phone->sendText("go on"));
  EXPECT_TRUE(mirror.session.next(limit));
}

TEST(MirrorSession, SaysWhatIsNoFrameAndGoesOn) {
  const std::string notFrames[] = {jpeg, "", "\x81" + jpeg, "\x80", "\x80\xff\xd8\xff cut off", "\x80GIF89a \xff\xd9"};
  GrantedMirror mirror([&](HostEnd& host) {
    for (const std::string& bytes : notFrames) host.sendBinary(bytes);
    host.sendBinary(frame);
  });
  for (const std::string& bytes : notFrames) {
    const auto none = mirror.session.next(limit);
    ASSERT_FALSE(none) << bytes;
    EXPECT_EQ(none.error().kind, Error::Kind::unexpected) << bytes;
  }
  EXPECT_TRUE(mirror.session.next(limit));
}

TEST(MirrorSession, NoticesThatTheConnectionIsLostInTheMiddle) {
  GrantedMirror mirror([](HostEnd& host) {
    host.sendBinary(frame);
    host.hangUp();
  });
  EXPECT_TRUE(mirror.session.next(limit));
  const auto none = mirror.session.next(limit);
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().kind, Error::Kind::ended);
}

TEST(MirrorSession, StopsAndDropsTheFramesThatWereOnTheirWay) {
  PhoneMessage request;
  GrantedMirror mirror([&](HostEnd& host) {
    request = host.read();
    host.sendBinary(frame);
    host.read();
    host.send(R"({"t":"pong"})");
    host.send("after");
  });
  EXPECT_FALSE(mirror.session.stop(limit));
  const auto message = mirror.phone->receive(limit);
  ASSERT_TRUE(message);
  EXPECT_EQ(message->payload, "after");
  mirror.host.join();
  EXPECT_EQ(request, (PhoneMessage{true, R"({"t":"mirrorStop"})"}));
}

}  // namespace
}  // namespace orvel::phone
