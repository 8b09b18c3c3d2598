#include "platform/linux/x11/keyboard/SpareKeys.hpp"

#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Properties.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace orvel {
namespace {

constexpr std::string_view notesPropertyName = "_ORVEL_SPARE_KEYS";
constexpr std::uint8_t wordFormat = 32;
constexpr std::uint32_t noteFields = 4;
constexpr std::uint32_t mostNoteFields = noteFields * 256;

xcb_window_t showSign(const X11Connection& connection, xcb_atom_t name) {
  const xcb_window_t window = xcb_generate_id(connection.get());
  xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, name, XCB_ATOM_WINDOW, wordFormat, 1, &window);
  return window;
}

}  // namespace

SpareKeys::SpareKeys(const X11Connection& connection, const Keyboard& keyboard)
    : connection_(connection),
      keyboard_(keyboard),
      notesName_(namedAtom(connection.get(), notesPropertyName)),
      sign_(showSign(connection, notesName_)) {}

void SpareKeys::undoLeftovers() const {
  if (readNotes().empty()) return;
  const ServerGrab grab(connection_);
  auto notes = readNotes();
  const auto map = keyboard_.readMap();
  if (!map) return;
  std::erase_if(notes, [&](const Note& note) {
    // Nothing of ours is noted yet: what bears our sign is by an earlier program that had the same number.
    if (note.writer != sign_ && isAlive(note.writer)) return false;
    const bool isKey = note.keyCode >= map->firstKeyCode() && note.keyCode <= map->lastKeyCode();
    const auto keyCode = static_cast<std::uint8_t>(note.keyCode);
    if (isKey && keyCode > KeyboardMap::lastWritingKey && map->hasLevels(keyCode, note.meaning)) {
      keyboard_.unbind(*map, keyCode);
    }
    return true;
  });
  writeNotes(notes);
}

std::size_t SpareKeys::capacity(const KeyboardMap& map) const {
  return bindings_.size() + freeCount(map);
}

std::size_t SpareKeys::freeCount(const KeyboardMap& map) const {
  return freeKeys(map).size();
}

std::vector<std::uint8_t> SpareKeys::freeKeys(const KeyboardMap& map) const {
  std::vector<std::uint8_t> keys;
  for (int keyCode = map.firstKeyCode(); keyCode <= map.lastKeyCode(); ++keyCode) {
    const auto code = static_cast<std::uint8_t>(keyCode);
    if (map.isSpare(code)) keys.push_back(code);
  }
  return keys;
}

std::optional<std::uint8_t> SpareKeys::use(const Levels& meaning) {
  const auto found = std::ranges::find(bindings_, meaning, &Binding::meaning);
  if (found == bindings_.end()) return std::nullopt;
  std::rotate(found, std::next(found), bindings_.end());
  return bindings_.back().keyCode;
}

void SpareKeys::bind(const KeyboardMap& map, const Meanings& added, const Meanings& kept) {
  std::vector<std::uint8_t> keys = freeKeys(map);
  std::erase_if(bindings_, [&](const Binding& binding) {
    if (keys.size() >= added.size() || kept.contains(binding.meaning)) return false;
    keys.push_back(binding.keyCode);
    return true;
  });
  const auto oldCount = bindings_.size();
  auto key = keys.begin();
  for (const Levels& meaning : added) {
    if (key != keys.end()) bindings_.push_back({.keyCode = *key++, .meaning = meaning});
  }
  noteBindings();
  for (auto binding = bindings_.begin() + static_cast<std::ptrdiff_t>(oldCount); binding != bindings_.end();
       ++binding) {
    keyboard_.bind(map, binding->keyCode, binding->meaning);
  }
}

void SpareKeys::forgetLost(const KeyboardMap& map) {
  const auto lost = std::erase_if(
      bindings_, [&](const Binding& binding) { return !map.hasLevels(binding.keyCode, binding.meaning); });
  if (lost > 0) noteBindings();
}

void SpareKeys::unbindAll(const KeyboardMap& map) {
  forgetLost(map);
  for (const Binding& binding : bindings_) keyboard_.unbind(map, binding.keyCode);
  bindings_.clear();
  noteBindings();
}

std::vector<SpareKeys::Note> SpareKeys::readNotes() const {
  const auto fields =
      numbersIn(readProperty(connection_.get(), connection_.root(), notesName_, mostNoteFields, XCB_ATOM_CARDINAL));
  std::vector<Note> notes;
  for (std::size_t i = 0; i + noteFields <= fields.size(); i += noteFields) {
    notes.push_back({.writer = fields[i], .keyCode = fields[i + 1], .meaning = {fields[i + 2], fields[i + 3]}});
  }
  return notes;
}

void SpareKeys::writeNotes(const std::vector<Note>& notes) const {
  if (notes.empty()) {
    xcb_delete_property(connection_.get(), connection_.root(), notesName_);
    return;
  }
  static_assert(sizeof(Note) == noteFields * sizeof(std::uint32_t));
  xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, connection_.root(), notesName_, XCB_ATOM_CARDINAL,
                      wordFormat, static_cast<std::uint32_t>(notes.size() * noteFields), notes.data());
}

void SpareKeys::noteBindings() const {
  auto notes = readNotes();
  std::erase_if(notes, [&](const Note& note) { return note.writer == sign_; });
  for (const Binding& binding : bindings_)
    notes.push_back({.writer = sign_, .keyCode = binding.keyCode, .meaning = binding.meaning});
  writeNotes(notes);
}

bool SpareKeys::isAlive(xcb_window_t writer) const {
  return numbersIn(readProperty(connection_.get(), writer, notesName_, 1, XCB_ATOM_WINDOW)).size() == 1;
}

}  // namespace orvel
