#include "session/LoopbackServer.hpp"
#include "session/RawWebSocket.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace orvel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::uint16_t protocolError = 1002;
constexpr std::uint16_t invalidPayload = 1007;
constexpr std::uint16_t tooBig = 1009;

bool hasEnded(const ConnectionRecord& record) {
  return record.ended();
}

bool isReady(const ConnectionRecord& record) {
  return record.has(Transport::State::ready);
}

/// The whole of a message in one frame.
std::string text(std::string payload) {
  return bytesOf(RawFrame{.opcode = opcode::text, .payload = std::move(payload)});
}

/// A server and a first, well-behaved client, who must never notice what others do.
class WebSocketConduct : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(server.port(), 0);
    ASSERT_TRUE(neighbour.open());
  }

  void TearDown() override {
    ASSERT_TRUE(neighbour.send(RawFrame{.opcode = opcode::ping, .payload = "there?"}));
    const auto pong = neighbour.readFrame();
    ASSERT_TRUE(pong);
    EXPECT_EQ(pong->payload, "there?");
    ASSERT_TRUE(neighbour.send(text("undisturbed")));
    EXPECT_TRUE(server.waitFor(0, [](const ConnectionRecord& record) { return !record.messages.empty(); }));
    EXPECT_THAT(server.connection(0).messages, ElementsAre(ReceivedMessage{MessageType::text, "undisturbed"}));
  }

  /// Waits for as many messages of the client under test and returns them.
  std::vector<ReceivedMessage> messages(std::size_t count) {
    server.waitFor(1, [count](const ConnectionRecord& record) { return record.messages.size() >= count; });
    return server.connection(1).messages;
  }

  LoopbackServer server;
  RawWebSocket neighbour{server.port()};
};

// Handshakes.

struct BadHandshake {
  const char* name;
  std::string bytes;
  const char* answer;  ///< How the answer begins; empty where none is owed.
};

void PrintTo(const BadHandshake& handshake, std::ostream* out) {
  *out << handshake.name;
}

class WebSocketBadHandshake : public WebSocketConduct, public testing::WithParamInterface<BadHandshake> {};

TEST_P(WebSocketBadHandshake, EndsTheConnectionAndNoOther) {
  RawWebSocket client(server.port());
  client.send(GetParam().bytes);
  const std::string head = client.readHead();
  EXPECT_THAT(head, StartsWith(GetParam().answer));
  EXPECT_THAT(head, testing::Not(HasSubstr(" 101 ")));
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_THAT(server.connection(1).states, ElementsAre(Transport::State::failed));
  EXPECT_THAT(server.connection(1).messages, IsEmpty());
}

/// The start of a TLS 1.2 client's hello, as a browser sends it to a "wss:" address.
std::string clientHello() {
  std::string body = std::string("\x03\x03", 2) + std::string(32, '\x5a') + std::string("\x00", 1);
  body += std::string("\x00\x02\x13\x01\x01\x00", 6);
  const std::string length = {'\x00', '\x00', static_cast<char>(body.size())};
  const std::string handshake = '\x01' + length + body;
  return std::string("\x16\x03\x01\x00", 4) + static_cast<char>(handshake.size()) + handshake;
}

/// Bytes without any pattern, the same every time.
std::string noise(std::size_t size) {
  std::string bytes;
  std::uint32_t state = 20250117;
  for (std::size_t i = 0; i < size; ++i) {
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    All, WebSocketBadHandshake,
    testing::Values(
        BadHandshake{"PlainGet", "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n", "HTTP/1.1 4"},
        BadHandshake{"Post", "POST / HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 2\r\n\r\n{}", ""},
        BadHandshake{"PostThatUpgrades", bytesOf(RawHandshake{.requestLine = "POST / HTTP/1.1"}), "HTTP/1.1 4"},
        BadHandshake{"OldHttp", bytesOf(RawHandshake{.requestLine = "GET / HTTP/1.0"}), "HTTP/1."},
        BadHandshake{"NoHttpVersion", bytesOf(RawHandshake{.requestLine = "GET /"}), ""},
        BadHandshake{"Tls", clientHello() + std::string(2048, '\0'), ""}, BadHandshake{"Noise", noise(16384), ""},
        BadHandshake{"OneEndlessLine", "GET /" + std::string(1 << 20, 'a'), ""},
        BadHandshake{"EndlessHeaders", bytesOf(RawHandshake{.more = "X: " + std::string(1 << 20, 'a') + "\r\n"}), ""},
        BadHandshake{"OldVersion", bytesOf(RawHandshake{.version = "Sec-WebSocket-Version: 8"}), "HTTP/1.1 426 "},
        BadHandshake{"NoVersion", bytesOf(RawHandshake{.version = ""}), "HTTP/1.1 4"},
        BadHandshake{"NoKey", bytesOf(RawHandshake{.key = ""}), "HTTP/1.1 4"},
        BadHandshake{"ShortKey", bytesOf(RawHandshake{.key = "Sec-WebSocket-Key: c2hvcnQ="}), "HTTP/1.1 4"},
        BadHandshake{"NoUpgrade", bytesOf(RawHandshake{.upgrade = ""}), "HTTP/1.1 4"},
        BadHandshake{"OtherUpgrade", bytesOf(RawHandshake{.upgrade = "Upgrade: h2c"}), "HTTP/1.1 4"},
        BadHandshake{"NoConnection", bytesOf(RawHandshake{.connection = ""}), "HTTP/1.1 4"},
        BadHandshake{"OtherConnection", bytesOf(RawHandshake{.connection = "Connection: keep-alive"}), "HTTP/1.1 4"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(WebSocketConduct, AnotherVersionIsToldTheRightOne) {
  RawWebSocket client(server.port());
  ASSERT_TRUE(client.send(bytesOf(RawHandshake{.version = "Sec-WebSocket-Version: 25"})));
  const std::string head = client.readHead();
  EXPECT_THAT(head, StartsWith("HTTP/1.1 426 "));
  EXPECT_THAT(head, HasSubstr("Sec-WebSocket-Version: 13\r\n"));
}

TEST_F(WebSocketConduct, AHandshakeMayComeByteByByte) {
  RawWebSocket client(server.port());
  for (const char byte : bytesOf(RawHandshake{})) ASSERT_TRUE(client.send(std::string_view(&byte, 1)));
  EXPECT_THAT(client.readHead(), StartsWith("HTTP/1.1 101 "));
}

TEST_F(WebSocketConduct, AMessageMayComeTogetherWithTheHandshake) {
  RawWebSocket client(server.port());
  ASSERT_TRUE(client.send(bytesOf(RawHandshake{}) + text("early")));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "early"}));
}

TEST_F(WebSocketConduct, ABrowsersManyHeadersAreNoHindrance) {
  RawWebSocket client(server.port());
  ASSERT_TRUE(client.send(bytesOf(RawHandshake{.more = "Origin: http://127.0.0.1\r\nCookie: " + std::string(3000, 'c') +
                                                       "\r\nSec-WebSocket-Extensions: permessage-deflate\r\n"})));
  const std::string head = client.readHead();
  EXPECT_THAT(head, StartsWith("HTTP/1.1 101 "));
  EXPECT_THAT(head, testing::Not(HasSubstr("permessage-deflate")));
}

// Takes the ten seconds that a handshake may take.
TEST_F(WebSocketConduct, AHandshakeThatDoesNotEndIsEndedAfterTenSeconds) {
  RawWebSocket silent(server.port());
  RawWebSocket halfway(server.port());
  RawWebSocket dribbling(server.port());
  ASSERT_TRUE(halfway.send("GET / HTTP/1.1\r\nHost: 127.0"));
  const auto start = std::chrono::steady_clock::now();
  const std::string handshake = bytesOf(RawHandshake{});
  std::size_t sent = 0;
  while (sent < handshake.size() && !dribbling.waitForEnd(200ms)) {
    dribbling.send(std::string_view(handshake).substr(sent++, 1));
    ASSERT_TRUE(neighbour.send(RawFrame{.opcode = opcode::ping}));
    ASSERT_TRUE(neighbour.readFrame(1s)) << "others must be served meanwhile";
    ASSERT_LT(std::chrono::steady_clock::now() - start, 15s);
  }
  EXPECT_TRUE(silent.waitForEnd(1s));
  EXPECT_TRUE(halfway.waitForEnd(1s));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 9s) << "a slow phone has its ten seconds";
  for (const std::size_t index : {1, 2, 3}) {
    EXPECT_TRUE(server.waitFor(index, hasEnded));
    EXPECT_THAT(server.connection(index).states, ElementsAre(Transport::State::failed));
  }
}

TEST_F(WebSocketConduct, AClientMayVanishBeforeItsHandshake) {
  RawWebSocket client(server.port());
  client.reset();
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_FALSE(server.connection(1).has(Transport::State::ready));
}

TEST_F(WebSocketConduct, AClientMayVanishInTheMiddleOfAMessage) {
  RawWebSocket client(server.port());
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = "half", .declaredLength = 8}));
  client.reset();
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_THAT(server.connection(1).messages, IsEmpty());
}

// Frames.

struct Violation {
  std::string name;
  std::string bytes;
  std::vector<std::uint16_t> codes;         ///< With which the server may close.
  std::function<std::string()> large = {};  ///< Makes the bytes, where they are many.
};

void PrintTo(const Violation& violation, std::ostream* out) {
  *out << violation.name;
}

std::vector<Violation> brokenFrames() {
  std::vector<Violation> all = {
      {"UnmaskedText", bytesOf(RawFrame{.opcode = opcode::text, .payload = "hi", .masked = false}), {protocolError}},
      {"UnmaskedPing", bytesOf(RawFrame{.opcode = opcode::ping, .masked = false}), {protocolError}},
      {"FragmentedPing", bytesOf(RawFrame{.opcode = opcode::ping, .final = false}), {protocolError}},
      {"FragmentedClose", bytesOf(RawFrame{.opcode = opcode::close, .final = false}), {protocolError}},
      {"LongPing", bytesOf(RawFrame{.opcode = opcode::ping, .payload = std::string(126, 'p')}), {protocolError}},
      {"LongPong", bytesOf(RawFrame{.opcode = opcode::pong, .payload = std::string(126, 'p')}), {protocolError}},
      {"LongClose",
       bytesOf(RawFrame{.opcode = opcode::close, .payload = closePayload(1000, std::string(124, 'r'))}),
       {protocolError}},
      {"ContinuationOfNothing", bytesOf(RawFrame{.opcode = opcode::continuation, .payload = "more"}), {protocolError}},
      {"FinalContinuationTwice",
       bytesOf(RawFrame{.opcode = opcode::binary, .final = false}) + bytesOf(RawFrame{.opcode = opcode::continuation}) +
           bytesOf(RawFrame{.opcode = opcode::continuation}),
       {protocolError}},
      {"TextInsideFragmentedText",
       bytesOf(RawFrame{.opcode = opcode::text, .payload = "a", .final = false}) + text("b"),
       {protocolError}},
      {"BinaryInsideFragmentedText",
       bytesOf(RawFrame{.opcode = opcode::text, .payload = "a", .final = false}) +
           bytesOf(RawFrame{.opcode = opcode::binary, .payload = "b"}),
       {protocolError}},
      {"ShortLengthInTwoBytes",
       bytesOf(RawFrame{
           .opcode = opcode::text, .payload = std::string(125, 'a'), .lengthForm = RawFrame::LengthForm::inTwoBytes}),
       {protocolError}},
      {"ShortLengthInEightBytes",
       bytesOf(RawFrame{
           .opcode = opcode::text, .payload = std::string(125, 'a'), .lengthForm = RawFrame::LengthForm::inEightBytes}),
       {protocolError}},
      {"MiddleLengthInEightBytes",
       bytesOf(RawFrame{.opcode = opcode::text,
                        .payload = std::string(65535, 'a'),
                        .lengthForm = RawFrame::LengthForm::inEightBytes}),
       {protocolError}},
      {"LengthWithTheTopBit",
       bytesOf(RawFrame{.opcode = opcode::binary, .declaredLength = std::uint64_t{1} << 63 | 5}),
       {protocolError, tooBig}},
      {"NothingButOnes", std::string(64, '\xff'), {protocolError}},
  };
  for (const std::uint8_t bit : std::to_array<std::uint8_t>({1, 2, 4})) {
    all.push_back({"ReservedBit" + std::to_string(bit),
                   bytesOf(RawFrame{.opcode = opcode::text, .payload = "hi", .reserved = bit}),
                   {protocolError}});
  }
  for (const std::uint8_t reserved : std::to_array<std::uint8_t>({3, 4, 5, 6, 7, 11, 12, 13, 14, 15})) {
    all.push_back(
        {"ReservedOpcode" + std::to_string(reserved), bytesOf(RawFrame{.opcode = reserved}), {protocolError}});
  }
  return all;
}

std::vector<Violation> brokenCloses() {
  const auto close = [](std::string payload) {
    return bytesOf(RawFrame{.opcode = opcode::close, .payload = std::move(payload)});
  };
  std::vector<Violation> all = {
      {"CloseOfOneByte", close("\x03"), {protocolError}},
      {"CloseReasonOfBrokenText", close(closePayload(1000, "\xc3(")), {protocolError, invalidPayload}},
      {"CloseReasonCutShort", close(closePayload(1000, "\xe2\x82")), {protocolError, invalidPayload}},
  };
  for (const std::uint16_t code : std::to_array<std::uint16_t>({0, 999, 1004, 1005, 1006, 1015, 2999})) {
    all.push_back({"CloseWithCode" + std::to_string(code), close(closePayload(code)), {protocolError}});
  }
  // The RFC defines no such codes, but does not forbid a server to return them either.
  for (const std::uint16_t code : std::to_array<std::uint16_t>({5000, 65535})) {
    all.push_back({"CloseWithCode" + std::to_string(code), close(closePayload(code)), {protocolError, code}});
  }
  return all;
}

std::vector<Violation> brokenTexts() {
  const auto fragment = [](std::uint8_t kind, std::string payload, bool final) {
    return bytesOf(RawFrame{.opcode = kind, .payload = std::move(payload), .final = final});
  };
  return {
      {"TextWithALoneLead", text("a\xc3(b"), {invalidPayload}},
      {"TextWithALoneTail", text("\x80"), {invalidPayload}},
      {"TextWithAnOverlongForm", text("\xc0\xaf"), {invalidPayload}},
      {"TextWithASurrogate", text("\xed\xa0\x80"), {invalidPayload}},
      {"TextBeyondUnicode", text("\xf4\x90\x80\x80"), {invalidPayload}},
      {"TextCutInsideACharacter", text("ok \xe2\x82"), {invalidPayload}},
      {"TextBrokenAcrossFragments",
       fragment(opcode::text, "\xe2\x82", false) + fragment(opcode::continuation, "(", true),
       {invalidPayload}},
      {"TextCutAtTheEndOfItsFragments",
       fragment(opcode::text, "ok", false) + fragment(opcode::continuation, "\xf0\x9f\x98", true),
       {invalidPayload}},
      {"TextCutBeforeAnEmptyEnd",
       fragment(opcode::text, "\xf0\x9f", false) + fragment(opcode::continuation, "", true),
       {invalidPayload}},
  };
}

std::string filledFragment(std::uint8_t kind, std::size_t size, bool final) {
  return bytesOf(RawFrame{.opcode = kind, .payload = std::string(size, 'x'), .final = final});
}

std::string oneByteTooManyInFragments() {
  constexpr std::size_t half = LoopbackServer::largestMessage / 2;
  return filledFragment(opcode::text, half, false) + filledFragment(opcode::continuation, half, false) +
         filledFragment(opcode::continuation, 1, true);
}

std::string endlessFragments() {
  std::string bytes = filledFragment(opcode::binary, 0, false);
  for (int i = 0; i < 20; ++i) bytes += filledFragment(opcode::continuation, 1 << 19, false);
  return bytes;
}

// Made by the tests that send them: what stands in the list is made by every test of this program.
std::vector<Violation> tooLarge() {
  return {
      {"OneByteTooMany",
       "",
       {tooBig},
       [] { return filledFragment(opcode::binary, LoopbackServer::largestMessage + 1, true); }},
      {"OneByteTooManyInFragments", "", {tooBig}, oneByteTooManyInFragments},
      {"EndlessFragments", "", {tooBig}, endlessFragments},
      {"DeclaredBeyondAnyMemory",
       bytesOf(RawFrame{.opcode = opcode::binary, .declaredLength = std::uint64_t{1} << 62}),
       {tooBig}},
  };
}

class WebSocketViolation : public WebSocketConduct, public testing::WithParamInterface<Violation> {};

TEST_P(WebSocketViolation, IsAnsweredByItsCodeAndTheEnd) {
  RawWebSocket client(server.port());
  ASSERT_TRUE(client.open());
  client.send(GetParam().large ? GetParam().large() : GetParam().bytes);
  const auto answer = client.readFrame();
  ASSERT_TRUE(answer) << "no close frame came";
  const auto code = closeCode(*answer);
  ASSERT_TRUE(code) << "opcode " << int{answer->opcode};
  EXPECT_THAT(GetParam().codes, testing::Contains(*code));
  EXPECT_FALSE(answer->masked);
  client.finishSending();
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  for (const auto& message : server.connection(1).messages) EXPECT_EQ(message.payload, "");
}

const auto nameOfViolation = [](const auto& test) { return test.param.name; };
INSTANTIATE_TEST_SUITE_P(Frames, WebSocketViolation, testing::ValuesIn(brokenFrames()), nameOfViolation);
INSTANTIATE_TEST_SUITE_P(Closes, WebSocketViolation, testing::ValuesIn(brokenCloses()), nameOfViolation);
INSTANTIATE_TEST_SUITE_P(Texts, WebSocketViolation, testing::ValuesIn(brokenTexts()), nameOfViolation);
INSTANTIATE_TEST_SUITE_P(Sizes, WebSocketViolation, testing::ValuesIn(tooLarge()), nameOfViolation);

/// A client that has done its handshake.
class WebSocketClient : public WebSocketConduct {
 protected:
  void SetUp() override {
    WebSocketConduct::SetUp();
    ASSERT_TRUE(client.open());
  }

  RawWebSocket client{server.port()};
};

TEST_F(WebSocketClient, MayBreakTheRulesInTheMiddleOfAFragmentedMessage) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = "half", .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping, .payload = "x", .reserved = 4}));
  const auto answer = client.readFrame();
  ASSERT_TRUE(answer);
  EXPECT_EQ(closeCode(*answer), protocolError);
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_THAT(server.connection(1).messages, IsEmpty());
}

TEST_F(WebSocketClient, LosesItsSocketAfterABrokenFrameEvenWhenItStays) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = 3}));
  EXPECT_TRUE(client.waitUntilSocketIsGone());
}

TEST_F(WebSocketClient, LosesItsSocketAfterABrokenTextEvenWhenItStays) {
  ASSERT_TRUE(client.send(text("\xff")));
  EXPECT_TRUE(client.waitUntilSocketIsGone());
}

TEST_F(WebSocketClient, LosesItsSocketAfterTooMuchEvenWhenItSendsOn) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::binary, .declaredLength = LoopbackServer::largestMessage * 2}));
  EXPECT_TRUE(client.waitUntilSocketIsGone());
}

TEST_F(WebSocketClient, IsRefusedAtOnceForWhatItDeclares) {
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .declaredLength = LoopbackServer::largestMessage + 1}));
  const auto answer = client.readFrame();
  ASSERT_TRUE(answer);
  EXPECT_EQ(closeCode(*answer), tooBig);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
}

TEST_F(WebSocketClient, MaySendTheLargestMessage) {
  const std::string largest(LoopbackServer::largestMessage, 'm');
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::binary, .payload = largest}));
  const auto received = messages(1);
  ASSERT_THAT(received, SizeIs(1));
  EXPECT_EQ(received[0].type, MessageType::binary);
  EXPECT_TRUE(received[0].payload == largest);
}

TEST_F(WebSocketClient, MaySendTheLargestMessageInFragments) {
  const std::string half(LoopbackServer::largestMessage / 2, 'm');
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = half, .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .payload = half}));
  const auto received = messages(1);
  ASSERT_THAT(received, SizeIs(1));
  EXPECT_EQ(received[0].type, MessageType::text);
  EXPECT_TRUE(received[0].payload == half + half);
}

TEST_F(WebSocketClient, HasItsFragmentsPutTogetherInOrder) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = "one ", .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .payload = "two ", .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .payload = "three"}));
  ASSERT_TRUE(client.send(text("next")));
  EXPECT_THAT(messages(2), ElementsAre(ReceivedMessage{MessageType::text, "one two three"},
                                       ReceivedMessage{MessageType::text, "next"}));
}

TEST_F(WebSocketClient, MayCutACharacterBetweenFragments) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = "\xf0\x9f", .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .payload = "\x98\x80"}));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "\xf0\x9f\x98\x80"}));
}

TEST_F(WebSocketClient, MaySendAnythingAsBinary) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::binary, .payload = "\xc3(\xff"}));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::binary, "\xc3(\xff"}));
}

TEST_F(WebSocketClient, MaySendEmptyMessages) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::binary}));
  ASSERT_TRUE(client.send(text("full")));
  EXPECT_TRUE(server.waitFor(1, [](const ConnectionRecord& record) {
    return !record.messages.empty() && record.messages.back().payload == "full";
  }));
  EXPECT_FALSE(server.connection(1).ended());
}

TEST_F(WebSocketClient, MaySendAMessageByteByByte) {
  for (const char byte : text("slowly")) ASSERT_TRUE(client.send(std::string_view(&byte, 1)));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "slowly"}));
}

TEST_F(WebSocketClient, HasItsPingsAnsweredAndNotDelivered) {
  for (const auto& payload : {std::string(), std::string("hello"), std::string(125, '\xff')}) {
    ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping, .payload = payload}));
    const auto pong = client.readFrame();
    ASSERT_TRUE(pong);
    EXPECT_EQ(pong->opcode, opcode::pong);
    EXPECT_EQ(pong->payload, payload);
    EXPECT_TRUE(pong->final);
    EXPECT_FALSE(pong->masked);
  }
  ASSERT_TRUE(client.send(text("after")));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "after"}));
}

TEST_F(WebSocketClient, HasItsPingAnsweredBetweenFragments) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::text, .payload = "be", .final = false}));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping, .payload = "now"}));
  const auto pong = client.readFrame();
  ASSERT_TRUE(pong);
  EXPECT_EQ(pong->payload, "now");
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::continuation, .payload = "tween"}));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "between"}));
}

TEST_F(WebSocketClient, MaySendPongsThatNobodyAskedFor) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::pong, .payload = "unasked"}));
  ASSERT_TRUE(client.send(text("after")));
  EXPECT_THAT(messages(1), ElementsAre(ReceivedMessage{MessageType::text, "after"}));
}

// Leaving.

class WebSocketGoodbye : public WebSocketClient, public testing::WithParamInterface<std::uint16_t> {};

TEST_P(WebSocketGoodbye, IsReturnedWithItsCode) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::close, .payload = closePayload(GetParam(), "bye")}));
  const auto answer = client.readFrame();
  ASSERT_TRUE(answer);
  EXPECT_EQ(closeCode(*answer), GetParam());
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_THAT(server.connection(1).messages, ElementsAre(testing::Field(&ReceivedMessage::type, MessageType::close)));
}

INSTANTIATE_TEST_SUITE_P(Codes, WebSocketGoodbye, testing::Values(1000, 1001, 1011, 3000, 4999));

TEST_F(WebSocketClient, MayLeaveWithoutACode) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::close}));
  const auto answer = client.readFrame();
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->opcode, opcode::close);
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_TRUE(server.waitFor(1, hasEnded));
}

TEST_F(WebSocketClient, IsNotHeardAfterItsGoodbye) {
  ASSERT_TRUE(client.send(text("before") + bytesOf(RawFrame{.opcode = opcode::close, .payload = closePayload(1000)}) +
                          text("after")));
  EXPECT_TRUE(client.waitForEnd());
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_THAT(server.connection(1).messages, ElementsAre(ReceivedMessage{MessageType::text, "before"},
                                                         testing::Field(&ReceivedMessage::type, MessageType::close)));
}

TEST_F(WebSocketClient, LosesItsSocketAfterItsGoodbyeEvenWhenItStays) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::close, .payload = closePayload(1000)}));
  EXPECT_TRUE(client.waitUntilSocketIsGone());
}

// Clients that are not read from.

struct WebSocketPause : WebSocketClient {
  void SetUp() override {
    WebSocketClient::SetUp();
    server.pause(1, true);
    ASSERT_TRUE(client.send(text("the last that is asked for")));
    ASSERT_THAT(messages(1), SizeIs(1));
  }

  void TearDown() override {
    server.setHungUp(false);
    WebSocketClient::TearDown();
  }
};

TEST_F(WebSocketPause, ItsHangUpIsToldOfWithoutBeingReadFrom) {
  ASSERT_TRUE(client.send(text("unread")));
  server.setHungUp(true);
  EXPECT_TRUE(server.waitFor(
      1, [](const ConnectionRecord& record) { return record.hungUp; }, 1s));
  EXPECT_THAT(server.connection(1).messages, SizeIs(1));
  EXPECT_FALSE(server.connection(0).hungUp) << "who is read from says it by itself";
  server.pause(1, false);
  EXPECT_THAT(messages(2), SizeIs(2));
}

TEST_F(WebSocketPause, IsPingedSoThatTheSystemOfOneThatIsGoneResets) {
  const auto ping = client.readFrame(1s);
  ASSERT_TRUE(ping);
  EXPECT_EQ(ping->opcode, opcode::ping);
  EXPECT_THAT(ping->payload, IsEmpty());
  server.pause(1, false);
  ASSERT_TRUE(client.send(text("unread")));
  EXPECT_THAT(messages(2), SizeIs(2));
}

TEST_F(WebSocketPause, OneThatVanishesIsGivenUpForItsUnacknowledgedPings) {
  ASSERT_TRUE(client.readFrame(1s)) << "the first ping";
  server.setDelivery(Delivery::ignored);
  EXPECT_TRUE(server.waitFor(1, [](const ConnectionRecord& record) { return record.hungUp; }));
  server.setDelivery(Delivery::done);
  server.pause(1, false);
  EXPECT_TRUE(server.waitFor(1, hasEnded));
}

TEST_F(WebSocketClient, IsGivenUpWhenItVanishesWithoutAcknowledgingAPong) {
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping}));
  ASSERT_TRUE(client.readFrame()) << "the pong";
  server.setDelivery(Delivery::ignored);
  EXPECT_TRUE(server.waitFor(1, hasEnded));
}

// Clients that do not read.

/// As many bytes of `unit` as the server takes from a client that never reads.
std::size_t bytesTaken(RawWebSocket& client, const std::string& unit, std::size_t most) {
  std::size_t taken = 0;
  while (taken < most && client.send(unit, 1s)) taken += unit.size();
  return taken;
}

TEST_F(WebSocketConduct, AClientThatPingsAndNeverReadsIsNotReadFromAnyMore) {
  constexpr std::size_t moreThanSocketsHold = std::size_t{64} << 20;
  RawWebSocket client(server.port(), 4096);
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(server.waitFor(1, isReady));
  std::string pings;
  while (pings.size() < 65536) pings += bytesOf(RawFrame{.opcode = opcode::ping, .payload = std::string(125, 'p')});
  EXPECT_LT(bytesTaken(client, pings, moreThanSocketsHold), moreThanSocketsHold);
}

TEST_F(WebSocketConduct, AHalfCloseIsNoticedBehindAPingWhosePongCannotBeWritten) {
  RawWebSocket client(server.port(), 4096);
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(server.waitFor(1, isReady));
  server.send(1, std::string(16 << 20, 's'));
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping, .payload = "there?"}));
  ASSERT_TRUE(client.send(text("behind the ping")));
  client.finishSending();
  EXPECT_FALSE(server.waitFor(1, hasEnded, 500ms)) << "the system knows nothing of it yet";
  server.setHungUp(true);
  EXPECT_TRUE(server.waitFor(1, hasEnded));
  EXPECT_THAT(server.connection(1).messages, IsEmpty());
}

TEST_F(WebSocketPause, AnEndDoesNotHideWhatLiesBehindAPingThatIsAnswered) {
  server.setHungUp(true);
  server.pause(1, false);
  ASSERT_TRUE(client.send(RawFrame{.opcode = opcode::ping}));
  ASSERT_TRUE(client.readFrame());
  EXPECT_FALSE(server.waitFor(1, hasEnded, 1s));
  ASSERT_TRUE(client.send(text("behind the ping")));
  EXPECT_THAT(messages(2), SizeIs(2));
}

TEST_F(WebSocketConduct, AClientThatNeverReadsHoldsUpItsOwnMessagesOnly) {
  constexpr std::size_t count = 32;
  RawWebSocket client(server.port(), 4096);
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(server.waitFor(1, isReady));
  for (std::size_t i = 0; i < count; ++i) server.send(1, std::string(1 << 20, 's'));
  server.send(0, "for you");
  const auto forNeighbour = neighbour.readFrame();
  ASSERT_TRUE(forNeighbour);
  EXPECT_EQ(forNeighbour->payload, "for you");
  EXPECT_LT(server.connection(1).sendsDone, count) << "a send is done when the network has taken it";

  server.cancel(1);
  EXPECT_TRUE(server.waitFor(1, [](const ConnectionRecord& record) { return record.sendsDone == count; }))
      << "every send is notified of its end";
  EXPECT_TRUE(server.connection(1).has(Transport::State::cancelled));
}

TEST_F(WebSocketConduct, AMessageForASlowReaderArrivesWhole) {
  const std::string large(std::size_t{3} << 20, 'l');
  RawWebSocket client(server.port(), 4096);
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(server.waitFor(1, isReady));
  server.send(1, large);
  server.send(1, "end");
  const auto frame = client.readFrame();
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->opcode, opcode::text);
  EXPECT_TRUE(frame->final);
  EXPECT_TRUE(frame->payload == large);
  const auto last = client.readFrame();
  ASSERT_TRUE(last);
  EXPECT_EQ(last->payload, "end");
}

TEST_F(WebSocketConduct, AViolationByAClientThatNeverReadsLeavesTheConnectionCancellable) {
  RawWebSocket client(server.port(), 4096);
  ASSERT_TRUE(client.open());
  ASSERT_TRUE(server.waitFor(1, isReady));
  server.send(1, std::string(16 << 20, 's'));
  ASSERT_TRUE(client.send(RawFrame{.opcode = 3}));
  server.cancel(1);
  EXPECT_TRUE(server.waitFor(1, [](const ConnectionRecord& record) { return record.sendsDone == 1; }));
  EXPECT_TRUE(server.connection(1).ended());
  EXPECT_TRUE(client.waitUntilSocketIsGone());
}

}  // namespace
}  // namespace orvel
