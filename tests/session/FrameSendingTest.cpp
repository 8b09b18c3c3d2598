#include "session/LoopbackServer.hpp"
#include "session/RawWebSocket.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace orvel {
namespace {

constexpr std::uint8_t marker = 0x80;

/// A connection on loopback, over which frames go to a client that reads as a test has it.
struct FrameSendingTest : testing::Test {
  explicit FrameSendingTest(std::optional<int> receiveBuffer = std::nullopt) : client(server.port(), receiveBuffer) {}

  void SetUp() override {
    ASSERT_TRUE(client.open());
    ASSERT_TRUE(server.waitFor(0, [](const auto& record) { return record.has(Transport::State::ready); }));
  }

  bool waitForTaken(std::size_t count) {
    return server.waitFor(0, [=](const auto& record) { return record.framesTaken == count; });
  }

  /// Whether the next that comes is this, whole and in one piece.
  void expectMessage(std::uint8_t opcode, const std::string& payload) {
    const auto frame = client.readFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->opcode, opcode);
    EXPECT_TRUE(frame->final);
    EXPECT_EQ(frame->payload.size(), payload.size());
    EXPECT_TRUE(frame->payload == payload);
  }

  LoopbackServer server;
  RawWebSocket client;
};

std::string image(std::size_t size, char salt = 0) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 251 + salt);
  return bytes;
}

TEST_F(FrameSendingTest, AFrameIsOneBinaryMessageOfTheMarkerAndTheImage) {
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{124}, std::size_t{125}, std::size_t{70'000}, std::size_t{900'000}}) {
    server.sendFrame(0, marker, image(size));
    expectMessage(opcode::binary, "\x80" + image(size));
  }
  EXPECT_TRUE(waitForTaken(5));
}

TEST_F(FrameSendingTest, MessagesOvertakeAFrameThatWaits) {
  server.setBacklog(Seconds(1000));
  server.sendFrame(0, marker, image(1000, 1));
  server.sendFrame(0, marker, image(1000, 2));
  server.send(0, "pong");
  expectMessage(opcode::binary, "\x80" + image(1000, 1));
  expectMessage(opcode::text, "pong");
  EXPECT_EQ(server.connection(0).framesTaken, 0u);
  server.setBacklog(Seconds(0));
  expectMessage(opcode::binary, "\x80" + image(1000, 2));
  EXPECT_TRUE(waitForTaken(2));
}

TEST_F(FrameSendingTest, FramesThatWaitCanBeDropped) {
  server.setBacklog(Seconds(1000));
  server.sendFrame(0, marker, image(1000, 1));
  server.sendFrame(0, marker, image(1000, 2));
  server.dropFrames(0);
  EXPECT_TRUE(waitForTaken(1));
  server.setBacklog(Seconds(0));
  server.sendFrame(0, marker, image(1000, 3));
  expectMessage(opcode::binary, "\x80" + image(1000, 1));
  expectMessage(opcode::binary, "\x80" + image(1000, 3));
}

TEST_F(FrameSendingTest, FramesAndMessagesDoNotMix) {
  for (char number = 0; number < 50; ++number) {
    server.sendFrame(0, marker, image(20'000, number));
    server.send(0, std::string(1000, 'x'));
  }
  int frames = 0;
  int messages = 0;
  while (frames + messages < 100) {
    const auto frame = client.readFrame();
    ASSERT_TRUE(frame);
    if (frame->opcode == opcode::text) {
      ++messages;
      continue;
    }
    EXPECT_TRUE(frame->payload == "\x80" + image(20'000, static_cast<char>(frames)));
    ++frames;
  }
  EXPECT_EQ(frames, 50);
  EXPECT_TRUE(waitForTaken(50));
}

TEST_F(FrameSendingTest, FramesOfAConnectionThatEndsCountAsTaken) {
  server.setBacklog(Seconds(1000));
  server.sendFrame(0, marker, image(1000));
  server.sendFrame(0, marker, image(1000));
  ASSERT_TRUE(client.readFrame());
  server.cancel(0);
  EXPECT_TRUE(waitForTaken(2));
}

struct FrameStallTest : FrameSendingTest {
  FrameStallTest() : FrameSendingTest(4096) {}
};

TEST_F(FrameStallTest, AClientThatDoesNotReadHasNoFrameTaken) {
  // More than the system takes in for it.
  for (char number = 0; number < 20; ++number) server.sendFrame(0, marker, image(900'000, number));
  server.send(0, "after the frame that is under way");
  EXPECT_FALSE(server.waitFor(
      0, [](const auto& record) { return record.framesTaken >= 10; }, std::chrono::milliseconds(200)));
  bool heard = false;
  for (int frames = 0; frames < 20;) {
    const auto frame = client.readFrame();
    ASSERT_TRUE(frame);
    if (frame->opcode == opcode::text) {
      heard = true;
      EXPECT_LT(frames, 10);
    } else {
      ++frames;
    }
  }
  EXPECT_TRUE(heard);
  EXPECT_TRUE(waitForTaken(20));
}

TEST_F(FrameStallTest, FramesOfAClientThatVanishesCountAsTaken) {
  for (char number = 0; number < 20; ++number) server.sendFrame(0, marker, image(900'000, number));
  client.reset();
  EXPECT_TRUE(waitForTaken(20));
}

}  // namespace
}  // namespace orvel
