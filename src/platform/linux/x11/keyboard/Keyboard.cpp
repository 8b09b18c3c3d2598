#include "platform/linux/x11/keyboard/Keyboard.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xinput.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr xcb_xkb_device_spec_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;
constexpr std::string_view typingDeviceName = "Virtual core XTEST keyboard";

// The third of the types that every map has: two levels, Shift and Lock together choose between them.
constexpr std::uint8_t alphabeticType = 2;

/// A key of one group, as it stands in a request.
struct BoundKey {
  xcb_xkb_key_sym_map_t key;
  KeyboardMap::Levels levels;
};

bool startXKB(const X11Connection& connection) {
  if (connection.extension(xcb_xkb_id) == nullptr) return false;
  const auto asked = xcb_xkb_use_extension(connection.get(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
  const auto reply = awaitReply(connection, xcb_xkb_use_extension_reply, asked);
  return reply && reply->supported;
}

xcb_xkb_device_spec_t findTypingDevice(const X11Connection& connection) {
  if (connection.extension(xcb_input_id) == nullptr) return coreKeyboard;
  const auto asked = xcb_input_xi_query_device(connection.get(), XCB_INPUT_DEVICE_ALL);
  const auto reply = awaitReply(connection, xcb_input_xi_query_device_reply, asked);
  if (!reply) return coreKeyboard;
  auto device = xcb_input_xi_query_device_infos_iterator(reply.get());
  for (; device.rem > 0; xcb_input_xi_device_info_next(&device)) {
    const std::string_view name(xcb_input_xi_device_info_name(device.data), device.data->name_len);
    if (name == typingDeviceName) return device.data->deviceid;
  }
  return coreKeyboard;
}

}  // namespace

Keyboard::Keyboard(const X11Connection& connection)
    : connection_(connection), isUsable_(startXKB(connection)), typingDevice_(findTypingDevice(connection)) {}

std::optional<Keyboard::Reading> Keyboard::read() const {
  if (!isUsable_) return std::nullopt;
  const auto mapAsked = askMap();
  const auto stateAsked = xcb_xkb_get_state(connection_.get(), coreKeyboard);
  const auto downAsked = xcb_query_keymap(connection_.get());
  const auto focusAsked = xcb_get_input_focus(connection_.get());
  auto map = takeMap(mapAsked);
  const auto state = awaitReply(connection_, xcb_xkb_get_state_reply, stateAsked);
  const auto down = awaitReply(connection_, xcb_query_keymap_reply, downAsked);
  const auto focus = awaitReply(connection_, xcb_get_input_focus_reply, focusAsked);
  if (!map || !state || !down || !focus) return std::nullopt;
  Reading reading{.map = *std::move(map),
                  .group = state->group,
                  .base = state->baseMods,
                  .locked = state->lockedMods,
                  .isLatched = state->latchedMods != 0 || state->latchedGroup != 0,
                  .downKeys = {},
                  .focus = focus->focus};
  for (std::size_t key = 0; key < reading.downKeys.size(); ++key)
    reading.downKeys[key] = down->keys[key / 8] >> key % 8 & 1;
  return reading;
}

std::optional<KeyboardMap> Keyboard::readMap() const {
  if (!isUsable_) return std::nullopt;
  return takeMap(askMap());
}

xcb_xkb_get_map_cookie_t Keyboard::askMap() const {
  return xcb_xkb_get_map(connection_.get(), typingDevice_, KeyboardMap::neededParts, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                         0, 0, 0, 0);
}

std::optional<KeyboardMap> Keyboard::takeMap(xcb_xkb_get_map_cookie_t asked) const {
  auto reply = awaitReply(connection_, xcb_xkb_get_map_reply, asked);
  if (!reply) return std::nullopt;
  return KeyboardMap(std::move(reply));
}

void Keyboard::unlatch() const {
  constexpr std::uint8_t allModifiers = 0xff;
  constexpr bool latchGroup = true;
  xcb_xkb_latch_lock_state(connection_.get(), coreKeyboard, 0, 0, false, 0, allModifiers, latchGroup, 0);
}

void Keyboard::setLocked(KeyboardMap::Modifiers affected, KeyboardMap::Modifiers locked) const {
  xcb_xkb_latch_lock_state(connection_.get(), coreKeyboard, affected, locked, false, 0, 0, false, 0);
}

void Keyboard::bind(const KeyboardMap& map, std::uint8_t keyCode, const KeyboardMap::Levels& levels) const {
  constexpr auto count = static_cast<std::uint8_t>(std::tuple_size_v<KeyboardMap::Levels>);
  BoundKey bound{.key = {}, .levels = levels};
  bound.key.kt_index[0] = alphabeticType;
  bound.key.groupInfo = 1;
  bound.key.width = count;
  bound.key.nSyms = count;
  setMap(map, keyCode, &bound, count);
}

void Keyboard::unbind(const KeyboardMap& map, std::uint8_t keyCode) const {
  const xcb_xkb_key_sym_map_t meaningless = {};
  setMap(map, keyCode, &meaningless, 0);
}

void Keyboard::setMap(const KeyboardMap& map, std::uint8_t keyCode, const void* key, std::uint8_t symbols) const {
  constexpr std::uint8_t oneKey = 1;
  xcb_xkb_set_map(connection_.get(), coreKeyboard, XCB_XKB_MAP_PART_KEY_SYMS, 0, map.firstKeyCode(), map.lastKeyCode(),
                  0, 0, keyCode, oneKey, symbols, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, key);
}

}  // namespace orvel
