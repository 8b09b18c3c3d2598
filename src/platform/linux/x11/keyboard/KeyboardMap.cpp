#include "platform/linux/x11/keyboard/KeyboardMap.hpp"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace orvel {
namespace {

constexpr std::uint8_t groupCountMask = 0x0f;
constexpr std::uint8_t groupRangeMask = 0xc0;
constexpr std::uint8_t clampIntoRange = 0x40;
constexpr std::uint8_t redirectIntoRange = 0x80;
constexpr int redirectedGroupShift = 4;
constexpr std::uint8_t redirectedGroupMask = 0x03;

/// The group of the key that stands for a group of the keyboard; a key may have fewer of them.
std::uint8_t groupOfKey(std::uint8_t groupInfo, std::uint8_t group) {
  const std::uint8_t count = groupInfo & groupCountMask;
  if (group < count) return group;
  switch (groupInfo & groupRangeMask) {
    case clampIntoRange:
      return count - 1;
    case redirectIntoRange: {
      const std::uint8_t redirected = groupInfo >> redirectedGroupShift & redirectedGroupMask;
      return redirected < count ? redirected : 0;
    }
    default:
      return group % count;
  }
}

std::span<const xcb_keysym_t> symbolsOf(const xcb_xkb_key_sym_map_t& key) {
  return {xcb_xkb_key_sym_map_syms(&key), key.nSyms};
}

/// What a reply says, without its header, which differs from answer to answer.
std::span<const std::byte> contentOf(const xcb_xkb_get_map_reply_t& reply) {
  constexpr std::size_t wordSize = 4;
  constexpr std::size_t fixedSize = 32;
  constexpr std::size_t headerSize = 8;
  return std::as_bytes(std::span(reinterpret_cast<const char*>(&reply), fixedSize + reply.length * wordSize))
      .subspan(headerSize);
}

}  // namespace

KeyboardMap::KeyboardMap(XCBPointer<xcb_xkb_get_map_reply_t> reply) : reply_(std::move(reply)) {
  xcb_xkb_get_map_map_t parts = {};
  xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(reply_.get()), reply_->nTypes, reply_->nKeySyms, reply_->nKeyActions,
                             reply_->totalActions, reply_->totalKeyBehaviors, reply_->virtualMods,
                             reply_->totalKeyExplicit, reply_->totalModMapKeys, reply_->totalVModMapKeys,
                             reply_->present, &parts);
  readKeys(parts);
  readModifiers(parts);
}

void KeyboardMap::readKeys(const xcb_xkb_get_map_map_t& parts) {
  auto type = xcb_xkb_get_map_map_types_rtrn_iterator(reply_.get(), &parts);
  for (; type.rem > 0; xcb_xkb_key_type_next(&type)) types_.push_back(type.data);
  auto key = xcb_xkb_get_map_map_syms_rtrn_iterator(reply_.get(), &parts);
  for (std::size_t keyCode = reply_->firstKeySym; key.rem > 0 && keyCode < symbols_.size(); ++keyCode) {
    symbols_[keyCode] = key.data;
    xcb_xkb_key_sym_map_next(&key);
  }
}

void KeyboardMap::readModifiers(const xcb_xkb_get_map_map_t& parts) {
  const std::uint8_t* counts = xcb_xkb_get_map_map_acts_rtrn_count(&parts);
  const xcb_xkb_action_t* action = xcb_xkb_get_map_map_acts_rtrn_acts(&parts);
  for (std::size_t i = 0; i < reply_->nKeyActions; ++i) {
    const std::size_t keyCode = reply_->firstKeyAction + i;
    const std::span actions(action, counts[i]);
    action += counts[i];
    const bool isPlain = std::ranges::all_of(actions, [](const xcb_xkb_action_t& each) {
      return each.noaction.type == XCB_XKB_SA_TYPE_SET_MODS || each.noaction.type == XCB_XKB_SA_TYPE_NO_ACTION;
    });
    if (!isPlain || keyCode >= modifiers_.size()) continue;
    for (const xcb_xkb_action_t& each : actions) {
      if (each.noaction.type == XCB_XKB_SA_TYPE_SET_MODS) modifiers_[keyCode] |= each.setmods.mask;
    }
  }
  auto modifier = xcb_xkb_get_map_map_modmap_rtrn_iterator(reply_.get(), &parts);
  for (; modifier.rem > 0; xcb_xkb_key_mod_map_next(&modifier)) isModifier_[modifier.data->keycode] = true;
}

xkb_keysym_t KeyboardMap::keysym(std::uint8_t keyCode, std::uint8_t group, Modifiers modifiers) const {
  const xcb_xkb_key_sym_map_t* key = symbols_[keyCode];
  if (key == nullptr || (key->groupInfo & groupCountMask) == 0) return XKB_KEY_NoSymbol;
  const std::uint8_t ownGroup = groupOfKey(key->groupInfo, group);
  if (ownGroup >= std::size(key->kt_index) || key->kt_index[ownGroup] >= types_.size()) return XKB_KEY_NoSymbol;
  const Meaning meaning = meaningOf(*types_[key->kt_index[ownGroup]], modifiers);
  const std::size_t place = std::size_t{ownGroup} * key->width + meaning.level;
  const auto symbols = symbolsOf(*key);
  if (meaning.level >= key->width || place >= symbols.size()) return XKB_KEY_NoSymbol;
  const bool isCapital = (modifiers & ~meaning.consumed & XCB_MOD_MASK_LOCK) != 0;
  return isCapital ? xkb_keysym_to_upper(symbols[place]) : symbols[place];
}

KeyboardMap::Meaning KeyboardMap::meaningOf(const xcb_xkb_key_type_t& type, Modifiers modifiers) {
  const std::span entries(xcb_xkb_key_type_map(&type), type.nMapEntries);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!entries[i].active || entries[i].mods_mask != (modifiers & type.mods_mask)) continue;
    const Modifiers preserved = type.hasPreserve ? xcb_xkb_key_type_preserve(&type)[i].mask : Modifiers{0};
    return {.level = entries[i].level, .consumed = static_cast<Modifiers>(type.mods_mask & ~preserved)};
  }
  return {.level = 0, .consumed = type.mods_mask};
}

bool KeyboardMap::hasLevels(std::uint8_t keyCode, const Levels& levels) const {
  const xcb_xkb_key_sym_map_t* key = symbols_[keyCode];
  return key != nullptr && std::ranges::equal(symbolsOf(*key), levels);
}

bool KeyboardMap::isSameAs(const KeyboardMap& other) const {
  return std::ranges::equal(contentOf(*reply_), contentOf(*other.reply_));
}

bool KeyboardMap::isSpare(std::uint8_t keyCode) const {
  const xcb_xkb_key_sym_map_t* key = symbols_[keyCode];
  return keyCode > lastWritingKey && key != nullptr && key->nSyms == 0 && !isModifier_[keyCode];
}

bool KeyboardMap::meansOnly(std::uint8_t keyCode, xkb_keysym_t keysym) const {
  const xcb_xkb_key_sym_map_t* key = symbols_[keyCode];
  return key != nullptr && key->nSyms > 0 &&
         std::ranges::all_of(symbolsOf(*key), [&](xcb_keysym_t symbol) { return symbol == keysym; });
}

}  // namespace orvel
