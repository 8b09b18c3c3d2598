#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"
#include "tools/ScriptedHost.hpp"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <future>
#include <string>

namespace orvel::phone {
namespace {

using testing::HasSubstr;

constexpr Seconds limit{5};
constexpr Seconds shortly{0.02};
constexpr const char* hello = R"({"nonce":"00112233445566778899aabbccddeeff","t":"hello","version":1,"mac":"Studio"})";

/// A phone that is connected to a host with this script.
struct Call {
  explicit Call(std::function<void(HostEnd&)> script)
      : host(std::move(script)), phone(PhoneClient::connect("127.0.0.1", host.port(), limit)) {}

  ScriptedHost host;
  Result<PhoneClient> phone;
};

TEST(PhoneClient, ProvesATokenByTheDigestOfTheNonceAsText) {
  EXPECT_EQ(proofOf("ABCDEFGHJKMNPQRS", "00112233445566778899aabbccddeeff"),
            "9aeaad81bbcec91bed3f054b4a2282f2874cb968c4106414492110fb1e6b64d4");
}

TEST(PhoneClient, ReadsTheGreeting) {
  Call call([](HostEnd& host) { host.send(hello); });
  ASSERT_TRUE(call.phone);
  const auto greeting = call.phone->greeting(limit);
  ASSERT_TRUE(greeting);
  EXPECT_EQ(greeting->mac, "Studio");
  EXPECT_EQ(greeting->version, 1);
  EXPECT_EQ(greeting->nonce, "00112233445566778899aabbccddeeff");
}

TEST(PhoneClient, RemembersAGreetingThatCameWhileItWaitedForSomethingElse) {
  Call call([](HostEnd& host) {
    host.send(hello);
    host.read();
    host.send(R"({"t":"pong"})");
    host.waitForGoodbye();
  });
  ASSERT_TRUE(call.phone);
  ASSERT_TRUE(call.phone->ping(limit));
  EXPECT_TRUE(call.phone->greeting(shortly));
  EXPECT_FALSE(call.phone->close(limit));
}

TEST(PhoneClient, PairsWithTheProofAndItsName) {
  PhoneMessage auth;
  Call call([&](HostEnd& host) {
    host.send(hello);
    auth = host.read();
    host.send(R"({"t":"permission","accessibility":false})");
    host.send(R"({"accessibility":true,"t":"ready","mac":"Studio"})");
  });
  ASSERT_TRUE(call.phone);
  const auto welcome = call.phone->pair("ABCDEFGHJKMNPQRS", "Pocket", limit);
  ASSERT_TRUE(welcome);
  EXPECT_EQ(welcome->mac, "Studio");
  EXPECT_TRUE(welcome->accessibility);
  call.host.join();
  EXPECT_TRUE(auth.isText);
  const auto sent = boost::json::parse(auth.payload);
  EXPECT_EQ(sent.at("t"), "auth");
  EXPECT_EQ(sent.at("device"), "Pocket");
  EXPECT_EQ(sent.at("proof").as_string(), proofOf("ABCDEFGHJKMNPQRS", "00112233445566778899aabbccddeeff"));
}

TEST(PhoneClient, SaysWhyItWasDenied) {
  Call call([](HostEnd& host) {
    host.send(hello);
    host.read();
    host.send(R"({"t":"denied","reason":"No such code."})");
  });
  ASSERT_TRUE(call.phone);
  const auto welcome = call.phone->pair("ABCDEFGHJKMNPQRS", "Pocket", limit);
  ASSERT_FALSE(welcome);
  EXPECT_EQ(welcome.error().kind, Error::Kind::denied);
  EXPECT_EQ(welcome.error().text, "No such code.");
}

TEST(PhoneClient, DoesNotTakeAnIncompleteGreeting) {
  for (const char* greeting : {R"({"t":"hello"})", R"({"t":"hello","mac":1,"version":1,"nonce":"00"})",
                               R"({"t":"hello","mac":"a","version":"1","nonce":"00"})"}) {
    Call call([&](HostEnd& host) { host.send(greeting); });
    ASSERT_TRUE(call.phone);
    const auto read = call.phone->greeting(limit);
    ASSERT_FALSE(read) << greeting;
    EXPECT_EQ(read.error().kind, Error::Kind::unexpected);
  }
}

TEST(PhoneClient, SendsFramesAsTheyAre) {
  PhoneMessage first;
  PhoneMessage second;
  Call call([&](HostEnd& host) {
    first = host.read();
    second = host.read();
  });
  ASSERT_TRUE(call.phone);
  EXPECT_FALSE(call.phone->sendFrame(moveFrame(1, -1)));
  EXPECT_FALSE(call.phone->sendText("{}"));
  call.host.join();
  EXPECT_EQ(first, (PhoneMessage{false, std::string("\x01\x01\x00\xff\xff", 5)}));
  EXPECT_EQ(second, (PhoneMessage{true, "{}"}));
}

TEST(PhoneClient, WaitsForAKindAndDropsWhatComesBefore) {
  Call call([](HostEnd& host) {
    for (const char* other : {"no json", "[]", R"({"t":1})", R"({"t":"other"})", R"("wanted")"}) host.send(other);
    host.sendBinary(R"({"t":"wanted","n":1})");
    host.send(R"({"t":"wanted","n":2})");
  });
  ASSERT_TRUE(call.phone);
  const auto wanted = call.phone->receive("wanted", limit);
  ASSERT_TRUE(wanted);
  EXPECT_EQ(wanted->at("n"), 2);
}

TEST(PhoneClient, KnowsByNoIconsThatTheWorkIsDone) {
  PhoneMessage request;
  Call call([&](HostEnd& host) {
    request = host.read();
    host.send(R"({"t":"pong"})");
    host.send(R"({"t":"icons","items":{}})");
  });
  ASSERT_TRUE(call.phone);
  EXPECT_FALSE(call.phone->finishWork(limit));
  call.host.join();
  EXPECT_EQ(request, (PhoneMessage{true, R"({"t":"getIcons","ids":[]})"}));
}

TEST(PhoneClient, DoesNotWaitForEverForWork) {
  Call call([](HostEnd& host) { host.waitForGoodbye(); });
  ASSERT_TRUE(call.phone);
  const auto failure = call.phone->finishWork(shortly);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
  call.phone->hangUp();
}

TEST(PhoneClient, ATalkativeHostDoesNotKeepItWaiting) {
  Call call([](HostEnd& host) {
    for (int count = 0; count < 100000; ++count) host.send(R"({"t":"pong"})");
  });
  ASSERT_TRUE(call.phone);
  const auto failure = call.phone->finishWork(shortly);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
  call.phone->hangUp();
}

TEST(PhoneClient, DoesNotTakeAMessageBeyondTheLimit) {
  Call call([](HostEnd& host) { host.send(std::string(8 * 1024 * 1024 + 1, 'x')); });
  ASSERT_TRUE(call.phone);
  const auto message = call.phone->receive(limit);
  ASSERT_FALSE(message);
  EXPECT_EQ(message.error().kind, Error::Kind::ended);
}

TEST(PhoneClient, TakesAMessageUpToTheLimit) {
  Call call([](HostEnd& host) { host.send(std::string(8 * 1024 * 1024, 'x')); });
  ASSERT_TRUE(call.phone);
  EXPECT_TRUE(call.phone->receive(limit));
}

TEST(PhoneClient, TellsTextFromBinary) {
  Call call([](HostEnd& host) {
    host.sendBinary(std::string("\x80\xff\xd8", 3));
    host.send("text");
  });
  ASSERT_TRUE(call.phone);
  const auto picture = call.phone->receive(limit);
  ASSERT_TRUE(picture);
  EXPECT_FALSE(picture->isText);
  EXPECT_EQ(picture->payload, std::string("\x80\xff\xd8", 3));
  const auto text = call.phone->receive(limit);
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->isText);
}

TEST(PhoneClient, AWaitThatWasInVainCostsNothing) {
  Call call([](HostEnd& host) {
    host.read();
    host.send("late");
  });
  ASSERT_TRUE(call.phone);
  const auto nothing = call.phone->receive(shortly);
  ASSERT_FALSE(nothing);
  EXPECT_EQ(nothing.error().kind, Error::Kind::timedOut);
  EXPECT_FALSE(call.phone->sendText("go on"));
  const auto late = call.phone->receive(limit);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->payload, "late");
}

TEST(PhoneClient, TakesLeave) {
  bool goodbye = false;
  Call call([&](HostEnd& host) { goodbye = host.waitForGoodbye(); });
  ASSERT_TRUE(call.phone);
  EXPECT_FALSE(call.phone->close(limit));
  call.host.join();
  EXPECT_TRUE(goodbye);
  EXPECT_TRUE(call.phone->sendText("more"));
}

TEST(PhoneClient, TakesLeaveWhileItWaitsForAMessage) {
  bool goodbye = false;
  Call call([&](HostEnd& host) { goodbye = host.waitForGoodbye(); });
  ASSERT_TRUE(call.phone);
  ASSERT_FALSE(call.phone->receive(shortly));
  EXPECT_FALSE(call.phone->close(limit));
  call.host.join();
  EXPECT_TRUE(goodbye);
}

TEST(PhoneClient, DoesNotWaitForEverForAGoodbye) {
  std::promise<void> over;
  Call call([&](HostEnd&) { over.get_future().wait(); });
  ASSERT_TRUE(call.phone);
  const auto failure = call.phone->close(shortly);
  over.set_value();
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
}

TEST(PhoneClient, MayVanishWithoutAWord) {
  for (const auto vanish : {&PhoneClient::reset, &PhoneClient::hangUp}) {
    bool goodbye = true;
    Call call([&](HostEnd& host) { goodbye = host.waitForGoodbye(); });
    ASSERT_TRUE(call.phone);
    ((*call.phone).*vanish)();
    call.host.join();
    EXPECT_FALSE(goodbye);
    EXPECT_TRUE(call.phone->sendText("more"));
    EXPECT_FALSE(call.phone->receive(limit));
  }
}

TEST(PhoneClient, NoticesThatTheHostHasGone) {
  Call call([](HostEnd& host) { host.hangUp(); });
  ASSERT_TRUE(call.phone);
  const auto failure = call.phone->idle(limit);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::ended);
}

TEST(PhoneClient, SaysThatNobodyListens) {
  std::uint16_t port = 0;
  {
    Call call([](HostEnd&) {});
    port = call.host.port();
  }
  const auto phone = PhoneClient::connect("127.0.0.1", port, limit);
  ASSERT_FALSE(phone);
  EXPECT_EQ(phone.error().kind, Error::Kind::unreachable);
  EXPECT_THAT(phone.error().text, HasSubstr("127.0.0.1 port " + std::to_string(port)));
}

}  // namespace
}  // namespace orvel::phone
