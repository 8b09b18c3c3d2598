#include "desktop/LeafFixture.hpp"
#include "input/MediaDriver.hpp"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;
using Code = MediaDriver::Code;

struct MediaKey {
  Code code;
  xcb_keysym_t keysym;
};

constexpr std::array mediaKeys = {
    MediaKey{Code::volumeUp, XKB_KEY_XF86AudioRaiseVolume},
    MediaKey{Code::volumeDown, XKB_KEY_XF86AudioLowerVolume},
    MediaKey{Code::brightnessUp, XKB_KEY_XF86MonBrightnessUp},
    MediaKey{Code::brightnessDown, XKB_KEY_XF86MonBrightnessDown},
    MediaKey{Code::mute, XKB_KEY_XF86AudioMute},
    MediaKey{Code::playPause, XKB_KEY_XF86AudioPlay},
    MediaKey{Code::next, XKB_KEY_XF86AudioNext},
    MediaKey{Code::previous, XKB_KEY_XF86AudioPrev},
    MediaKey{Code::fastForward, XKB_KEY_XF86AudioForward},
    MediaKey{Code::rewind, XKB_KEY_XF86AudioRewind},
};

struct MediaKeysTest : LeafFixture {
  xcb_keysym_t keysymOf(int keyCode) {
    xcb_connection_t* server = leaves.connection().get();
    const auto asked = xcb_get_keyboard_mapping(server, static_cast<xcb_keycode_t>(keyCode), 1);
    const XCBPointer<xcb_get_keyboard_mapping_reply_t> reply{xcb_get_keyboard_mapping_reply(server, asked, nullptr)};
    return reply ? *xcb_get_keyboard_mapping_keysyms(reply.get()) : xcb_keysym_t{XKB_KEY_NoSymbol};
  }

  MediaDriver media{leaves.events};
};

TEST_F(MediaKeysTest, EachIsPressedAndReleasedOnce) {
  for (const auto& [code, keysym] : mediaKeys) {
    media.press(code);
    const auto inputs = delivered();
    ASSERT_EQ(inputs.size(), 2u) << static_cast<int>(code);
    EXPECT_EQ(inputs[0].kind, Kind::keyDown);
    EXPECT_EQ(inputs[1].kind, Kind::keyUp);
    EXPECT_EQ(keysymOf(inputs[0].detail), keysym) << static_cast<int>(code);
    EXPECT_EQ(inputs[1].detail, inputs[0].detail);
  }
}

TEST_F(MediaKeysTest, OtherEventsAreRefused) {
  const auto refuses = [&](std::int16_t subtype, std::int64_t data1) {
    return !leaves.events.post(SystemDefinedEvent{.flags = 0xa00, .subtype = subtype, .data1 = data1, .data2 = -1});
  };
  EXPECT_TRUE(refuses(8, 0x040a00)) << "a key type without a key";
  EXPECT_TRUE(refuses(8, 0x150a00));
  EXPECT_TRUE(refuses(8, 0x100c00)) << "neither down nor up";
  EXPECT_TRUE(refuses(7, 0x100a00)) << "another kind of event";
  EXPECT_TRUE(refuses(8, -1));
  EXPECT_TRUE(refuses(8, std::int64_t{0x107} << 16 | 0xa00));
  EXPECT_TRUE(delivered().empty());
}

TEST_F(MediaKeysTest, WithoutAServerTheyAreRefused) {
  desktop.killServer();
  EXPECT_TRUE(leaves.waitForEnd());
  EXPECT_FALSE(leaves.events.post(SystemDefinedEvent{.flags = 0xa00, .subtype = 8, .data1 = 0x100a00, .data2 = -1}));
}

}  // namespace
}  // namespace orvel
