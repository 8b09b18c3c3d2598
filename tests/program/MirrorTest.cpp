#include "program/ProgramFixture.hpp"
#include "session/RawWebSocket.hpp"
#include "tools/MirrorSession.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace orvel {
namespace {

constexpr phone::Seconds soon{0.3};

/// A phone that has asked for the screen.
struct Watcher {
  explicit Watcher(phone::PhoneClient connected) : client(std::move(connected)) {}

  phone::Result<phone::MirrorSize> start(const phone::MirrorWish& wish = {}) {
    return mirror.start(wish, phoneTimeout);
  }

  /// Takes what has come until nothing more does.
  int takeFrames() {
    int frames = 0;
    while (mirror.next(soon)) ++frames;
    return frames;
  }

  phone::PhoneClient client;
  phone::MirrorSession mirror{client};
};

struct MirrorTest : ProgramFixture {
  std::unique_ptr<Watcher> watcher(const std::string& device) {
    return std::make_unique<Watcher>(connectPaired(device));
  }

  /// Has the screen change.
  void movePointer() {
    place = place < 0.7 ? place + 0.1 : 0.1;
    mouse->sendFrame(phone::moveAbsoluteFrame(place, place));
    settle(*mouse);
  }

  bool waitForWords(const std::string& words) { return host.process().waitForOutput(words); }

  void SetUp() override {
    ProgramFixture::SetUp();
    mouse.emplace(connectPaired("Mouse"));
  }

  std::optional<phone::PhoneClient> mouse;
  double place = 0.1;
};

TEST_F(MirrorTest, TheFirstFrameComesAtOnceAndTheNextWhenSomethingChanges) {
  const auto phone = watcher("Phone");
  const auto size = phone->start();
  ASSERT_TRUE(size) << size.error().text;
  EXPECT_EQ(*size, (phone::MirrorSize{900, 563}));
  ASSERT_TRUE(phone->mirror.next(phoneTimeout));
  phone->takeFrames();
  EXPECT_EQ(phone->takeFrames(), 0) << "as nothing changes";
  movePointer();
  EXPECT_TRUE(phone->mirror.next(phoneTimeout));
  EXPECT_TRUE(waitForWords("Sharing your screen\n"));
}

TEST_F(MirrorTest, TheLastToStartWinsAndTheFirstEndsItAllTheSame) {
  const auto first = watcher("First");
  const auto second = watcher("Second");
  ASSERT_TRUE(first->start());
  ASSERT_TRUE(first->mirror.next(phoneTimeout));
  const auto size = second->start({.width = 640, .fps = 30, .quality = 0.6});
  ASSERT_TRUE(size);
  EXPECT_EQ(*size, (phone::MirrorSize{640, 400}));
  ASSERT_TRUE(second->mirror.next(phoneTimeout));
  first->takeFrames();
  second->takeFrames();
  movePointer();
  EXPECT_GT(second->takeFrames(), 0);
  EXPECT_EQ(first->takeFrames(), 0);
  ASSERT_FALSE(first->mirror.stop(phoneTimeout));
  EXPECT_TRUE(waitForWords("No longer sharing your screen\n"));
  movePointer();
  EXPECT_EQ(second->takeFrames(), 0);
  EXPECT_TRUE(second->client.ping(phoneTimeout)) << "and is connected still";
}

TEST_F(MirrorTest, APhoneThatVanishesIsNotSharedWithAnyMore) {
  auto phone = watcher("Phone");
  ASSERT_TRUE(phone->start());
  ASSERT_TRUE(waitForWords("Sharing your screen\n"));
  phone->client.reset();
  EXPECT_TRUE(waitForWords("No longer sharing your screen\n"));
}

TEST_F(MirrorTest, RestartedAHundredTimesItLeavesNothingBehind) {
  const auto phone = watcher("Phone");
  ASSERT_TRUE(phone->start());
  ASSERT_TRUE(phone->mirror.next(phoneTimeout));
  const auto before = host.footprint();
  for (int count = 0; count < 100; ++count) {
    ASSERT_TRUE(phone->start({.width = 400 + count, .fps = 30, .quality = 0.45}));
    if (count % 3 == 0) {
      ASSERT_FALSE(phone->mirror.stop(phoneTimeout));
    }
  }
  ASSERT_TRUE(phone->start());
  ASSERT_TRUE(phone->mirror.next(phoneTimeout));
  const auto after = host.footprint();
  EXPECT_LE(after.threads, before.threads + 1) << "one that has just done its work may still be there";
  EXPECT_EQ(after.descriptors, before.descriptors);
}

TEST_F(MirrorTest, StartsThatWaitForNothingAreSurvived) {
  const auto first = watcher("First");
  const auto second = watcher("Second");
  for (int count = 0; count < 150; ++count) {
    for (Watcher* phone : {first.get(), second.get()}) {
      phone->client.send({{"t", "mirrorStart"}, {"width", count % 2 == 0 ? 400 : 1280}, {"fps", 30}});
    }
    if (count % 5 == 0) movePointer();
  }
  EXPECT_LE(host.footprint().threads, 20u);
  const auto size = first->start({.width = 640, .fps = 30, .quality = 0.45});
  ASSERT_TRUE(size) << size.error().text;
  EXPECT_TRUE(first->mirror.next(phoneTimeout));
}

TEST_F(MirrorTest, TheProgramEndsWhileItMirrors) {
  const auto phone = watcher("Phone");
  ASSERT_TRUE(phone->start());
  ASSERT_TRUE(phone->mirror.next(phoneTimeout));
  host.process().signal(SIGTERM);
  EXPECT_EQ(host.process().waitForExit(), 0);
}

TEST_F(MirrorTest, TheProgramEndsWhileItMirrorsADesktopThatHangs) {
  const auto phone = watcher("Phone");
  ASSERT_TRUE(phone->start());
  ASSERT_TRUE(phone->mirror.next(phoneTimeout));
  desktop.signalServer(SIGSTOP);
  host.process().signal(SIGTERM);
  EXPECT_EQ(host.process().waitForExit(), 0);
  desktop.signalServer(SIGCONT);
}

/// A client of the X server that draws as long as it lives, a hundred times a second.
class Drawing {
 public:
  explicit Drawing(const std::string& display)
      : thread_([display](const std::stop_token& ended) { draw(display, ended); }) {}

 private:
  static void draw(const std::string& display, const std::stop_token& ended) {
    xcb_connection_t* const connection = xcb_connect(display.c_str(), nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_gcontext_t gc = xcb_generate_id(connection);
    constexpr std::uint32_t includeInferiors = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_create_gc(connection, gc, root, XCB_GC_SUBWINDOW_MODE, &includeInferiors);
    for (std::uint32_t colour = 0; !ended.stop_requested(); colour += 0x010305) {
      const xcb_rectangle_t area{100, 100, 800, 600};
      xcb_change_gc(connection, gc, XCB_GC_FOREGROUND, &colour);
      xcb_poly_fill_rectangle(connection, root, gc, 1, &area);
      xcb_flush(connection);
      std::this_thread::sleep_for(Milliseconds(10));
    }
    xcb_disconnect(connection);
  }

  std::jthread thread_;
};

struct SleepingPhoneTest : MirrorTest {
  /// What the host has used of the processor while the screen changed for two seconds.
  std::int64_t costOfChanges() {
    const Drawing drawing(desktop.display());
    const auto before = host.footprint().processorTicks;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    return host.footprint().processorTicks - before;
  }

  void request(RawWebSocket& socket, const boost::json::object& message) {
    ASSERT_TRUE(socket.send(RawFrame{.opcode = opcode::text, .payload = boost::json::serialize(message)}));
  }

  /// A phone that asks for the screen and then reads no more.
  void startAndSleep(RawWebSocket& socket) {
    ASSERT_TRUE(socket.open());
    const auto hello = socket.readFrame();
    ASSERT_TRUE(hello);
    const auto nonce = boost::json::parse(hello->payload).at("nonce").as_string();
    request(socket, {{"t", "auth"}, {"proof", phone::proofOf(code, nonce)}});
    ASSERT_TRUE(socket.readFrame());
    request(socket, {{"t", "mirrorStart"}, {"width", 1280}, {"fps", 30}, {"quality", 0.85}});
    ASSERT_TRUE(waitForWords("Sharing your screen\n"));
  }
};

TEST_F(SleepingPhoneTest, CostsNeitherMemoryNorProcessor) {
  RawWebSocket asleep(HostProcess::port, 4096);
  startAndSleep(asleep);
  costOfChanges();
  const auto before = host.footprint();
  const auto idleCost = costOfChanges();
  EXPECT_EQ(host.footprint().threads, before.threads);
  EXPECT_LE(host.footprint().privateKilobytes, before.privateKilobytes + 256);

  std::int64_t cost = 0;
  {
    const auto awake = watcher("Awake");
    ASSERT_TRUE(awake->start({.width = 1280, .fps = 30, .quality = 0.85}));
    std::jthread reading([&](const std::stop_token& ended) {
      while (!ended.stop_requested()) static_cast<void>(awake->mirror.next(soon));
    });
    cost = costOfChanges();
  }
  EXPECT_GE(cost, 4) << "in hundredths of a second, which must be enough to compare with";
  EXPECT_LE(idleCost, cost / 4);
}

}  // namespace
}  // namespace orvel
