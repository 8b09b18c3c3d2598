#include "program/ProgramFixture.hpp"
#include "session/RawWebSocket.hpp"

#include <boost/json/parse.hpp>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

constexpr int rightButton = 3;
constexpr std::size_t below = std::size_t{3} << 20;  // bytes that the host keeps for a phone, and more than it has done
/// Sanitizers keep what was freed.
constexpr bool memoryIsComparable = !ORVEL_SANITIZED;

constexpr std::size_t endless = std::size_t{256} << 20;

/// A phone that holds a button, sends more text than can be typed in an hour, and leaves in one of the ways
/// that there are.
struct HangUpTest : ProgramFixture {
  void SetUp() override {
    ProgramFixture::SetUp();
    phone = std::make_unique<RawWebSocket>(HostProcess::port);
    ASSERT_TRUE(phone->open());
    const auto hello = phone->readFrame();
    ASSERT_TRUE(hello);
    const auto nonce = boost::json::parse(hello->payload).at("nonce").as_string();
    ASSERT_TRUE(phone->send(RawFrame{.opcode = opcode::text,
                                     .payload = R"({"t":"auth","proof":")" + phone::proofOf(code, nonce) + R"("})"}));
    ASSERT_TRUE(phone->readFrame());
    ASSERT_TRUE(phone->send(RawFrame{.opcode = opcode::binary, .payload = std::string("\x02\x01\x01", 3)}));
    ASSERT_TRUE(waitForInput(Kind::buttonDown, rightButton));
  }

  /// Sends text until `most` bytes have gone, or the host takes no more for a while.
  std::size_t flood(std::size_t most) {
    const std::string frame =
        bytesOf(RawFrame{.opcode = opcode::binary, .payload = "\x05\xff\xff" + std::string(65'535, 'x')});
    std::size_t sent = 0;
    while (sent < most && phone->send(frame, std::chrono::seconds(2))) sent += frame.size();
    return sent;
  }

  bool isReleasedWithin(Milliseconds limit) {
    return witness.waitFor(
        [](const X11Witness::Inputs& inputs) {
          return std::ranges::any_of(inputs, [](const X11Witness::Input& input) {
            return input.kind == Kind::buttonUp && input.detail == rightButton;
          });
        },
        limit);
  }

  std::unique_ptr<RawWebSocket> phone;
};

TEST_F(HangUpTest, AGoodbyeBehindMuchTextIsAnsweredAndHeard) {
  flood(below);
  ASSERT_TRUE(phone->send(RawFrame{.opcode = opcode::ping, .payload = "there?"}));
  const auto pong = phone->readFrame(std::chrono::seconds(1));
  ASSERT_TRUE(pong);
  EXPECT_EQ(pong->opcode, opcode::pong);
  ASSERT_TRUE(phone->send(RawFrame{.opcode = opcode::close, .payload = closePayload(1000)}));
  EXPECT_TRUE(isReleasedWithin(std::chrono::seconds(1)));
  EXPECT_TRUE(phone->waitForEnd(std::chrono::seconds(1)));
}

TEST_F(HangUpTest, AHalfCloseBehindMuchTextIsSeen) {
  flood(below);
  phone->finishSending();
  EXPECT_TRUE(isReleasedWithin(std::chrono::seconds(1)));
}

TEST_F(HangUpTest, AResetBehindMuchTextIsSeen) {
  flood(below);
  phone->reset();
  EXPECT_TRUE(isReleasedWithin(std::chrono::seconds(1)));
}

TEST_F(HangUpTest, ACloseBehindMuchTextIsSeen) {
  flood(below);
  phone.reset();
  EXPECT_TRUE(isReleasedWithin(std::chrono::seconds(1)));
}

TEST_F(HangUpTest, WhoSendsMoreThanTheHostKeepsHoldsNothingAndItsEndIsSeen) {
  const auto before = host.footprint();
  EXPECT_LT(flood(endless), endless) << "the host stops reading";
  EXPECT_TRUE(isReleasedWithin(timeout));
  if (memoryIsComparable) {
    EXPECT_LT(host.footprint().privateKilobytes, before.privateKilobytes + 20 * 1024);
  }
  const std::size_t connected = host.footprint().descriptors;
  phone.reset();
  const Deadline second(std::chrono::seconds(1));
  while (host.footprint().descriptors >= connected && second.left() > Milliseconds(0)) {
    std::this_thread::sleep_for(Milliseconds(5));
  }
  EXPECT_LT(host.footprint().descriptors, connected)
      << "the kernel of the phone has more to send, and nobody to send it";
}

}  // namespace
}  // namespace orvel
