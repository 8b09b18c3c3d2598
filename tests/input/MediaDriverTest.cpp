#include "fakes/RecordingDesktop.hpp"
#include "input/MediaDriver.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Code = MediaDriver::Code;

TEST(MediaDriver, TenNumbersAreKeys) {
  const std::map<int, Code> keys = {
      {0, Code::volumeUp},     {1, Code::volumeDown}, {2, Code::brightnessUp}, {3, Code::brightnessDown},
      {7, Code::mute},         {16, Code::playPause}, {17, Code::next},        {18, Code::previous},
      {19, Code::fastForward}, {20, Code::rewind},
  };
  for (int number = 0; number < 256; ++number) {
    const auto found = keys.find(number);
    const auto expected = found == keys.end() ? std::nullopt : std::optional(found->second);
    EXPECT_EQ(MediaDriver::code(static_cast<std::uint8_t>(number)), expected) << number;
  }
}

TEST(MediaDriver, APressIsTwoEventsThatDifferInTheirDataAlone) {
  RecordingDesktop desktop;
  MediaDriver(desktop).press(Code::playPause);
  EXPECT_THAT(desktop.all<SystemDefinedEvent>(),
              ElementsAre(SystemDefinedEvent{.flags = 0xa00, .subtype = 8, .data1 = 0x100a00, .data2 = -1},
                          SystemDefinedEvent{.flags = 0xa00, .subtype = 8, .data1 = 0x100b00, .data2 = -1}));
}

TEST(MediaDriver, TheFirstKeyIsPressedLikeTheOthers) {
  RecordingDesktop desktop;
  MediaDriver(desktop).press(Code::volumeUp);
  EXPECT_THAT(desktop.all<SystemDefinedEvent>(),
              ElementsAre(SystemDefinedEvent{.flags = 0xa00, .subtype = 8, .data1 = 0xa00, .data2 = -1},
                          SystemDefinedEvent{.flags = 0xa00, .subtype = 8, .data1 = 0xb00, .data2 = -1}));
}

/// A desktop that refuses the press of special keys and takes their release.
class RefusingPresses final : public EventPoster {
 public:
  bool post(const MouseEvent&) override { return false; }
  bool post(const ScrollEvent&) override { return false; }
  bool post(const KeyEvent&) override { return false; }
  bool post(const SystemDefinedEvent& event) override {
    const bool accepts = (event.data1 & auxiliaryKey::stateMask) == auxiliaryKey::up;
    if (accepts) ++releases;
    return accepts;
  }
  bool post(const TextEvent&) override { return false; }
  bool tracksPointer() const override { return false; }
  std::optional<Point> pointerLocation() override { return std::nullopt; }
  void flush() override {}

  int releases = 0;
};

TEST(MediaDriver, ARefusedPressDoesNotKeepTheReleaseBack) {
  RefusingPresses desktop;
  MediaDriver(desktop).press(Code::mute);
  EXPECT_EQ(desktop.releases, 1);
}

}  // namespace
}  // namespace orvel
