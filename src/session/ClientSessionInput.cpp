#include "catalog/AppCatalog.hpp"
#include "input/FrameDecoder.hpp"
#include "input/KeyboardDriver.hpp"
#include "input/MediaDriver.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"

namespace orvel {
namespace {

constexpr std::uint8_t quitAction = 1;

/// The modifier bits of a key frame as keyboard event flags.
std::uint64_t flagsOf(std::uint8_t modifiers) {
  std::uint64_t flags = 0;
  if (modifiers & 0x01) flags |= modifier::command;
  if (modifiers & 0x02) flags |= modifier::shift;
  if (modifiers & 0x04) flags |= modifier::option;
  if (modifiers & 0x08) flags |= modifier::control;
  if (modifiers & 0x10) flags |= modifier::function;
  return flags;
}

}  // namespace

void ClientSession::handleInput(std::span<const std::uint8_t> frame) {
  if (!authenticated_ || !services_.permission.cachedTrust()) return;
  const auto command = FrameDecoder::decode(frame);
  if (command) std::visit([this](const auto& known) { carryOut(known); }, *command);
}

void ClientSession::carryOut(const FrameDecoder::Move& move) {
  services_.pointer.moveRelative(move.dx, move.dy);
}

void ClientSession::carryOut(const FrameDecoder::MoveAbsolute& move) {
  services_.pointer.moveAbsolute(move.nx, move.ny);
}

void ClientSession::carryOut(const FrameDecoder::Button& button) {
  services_.pointer.button(button.button, button.down, 1);
}

void ClientSession::carryOut(const FrameDecoder::Click& click) {
  services_.pointer.button(click.button, true, click.count);
  services_.pointer.button(click.button, false, click.count);
}

void ClientSession::carryOut(const FrameDecoder::Scroll& scroll) {
  services_.pointer.scroll(scroll.dx, scroll.dy);
}

void ClientSession::carryOut(const FrameDecoder::Key& key) {
  services_.keys.post(phone_, {.keyCode = key.keyCode, .down = key.down, .flags = flagsOf(key.modifiers)});
}

void ClientSession::carryOut(const FrameDecoder::Text& text) {
  handOff([&keyboard = services_.keyboard, text = text.text] { keyboard.type(text); }, taskCost + text.text.size());
}

void ClientSession::carryOut(const FrameDecoder::Media& media) {
  if (const auto code = MediaDriver::code(media.code)) services_.media.press(*code);
}

void ClientSession::carryOut(const FrameDecoder::App& app) {
  const bool quits = app.action == quitAction;
  handOff([&apps = services_.apps, quits,
           bundleID = app.bundleID] { quits ? apps.quit(bundleID) : apps.activate(bundleID); },
          taskCost + app.bundleID.size());
}

}  // namespace orvel
