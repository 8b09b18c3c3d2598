#include "input/FrameDecoder.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"

namespace orvel {
namespace {

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

/// Carries out one command each.
struct Dispatch {
  PointerDriver& pointer;
  HeldKeys& keys;

  void operator()(const FrameDecoder::Move& move) const { pointer.moveRelative(move.dx, move.dy); }
  void operator()(const FrameDecoder::MoveAbsolute& move) const { pointer.moveAbsolute(move.nx, move.ny); }
  void operator()(const FrameDecoder::Button& button) const { pointer.button(button.button, button.down, 1); }
  void operator()(const FrameDecoder::Click& click) const {
    pointer.button(click.button, true, click.count);
    pointer.button(click.button, false, click.count);
  }
  void operator()(const FrameDecoder::Scroll& scroll) const { pointer.scroll(scroll.dx, scroll.dy); }
  void operator()(const FrameDecoder::Key& key) const {
    keys.post({.keyCode = key.keyCode, .down = key.down, .flags = flagsOf(key.modifiers)});
  }

  // Typing, media keys and applications have no driver yet.
  void operator()(const FrameDecoder::Text&) const {}
  void operator()(const FrameDecoder::Media&) const {}
  void operator()(const FrameDecoder::App&) const {}
};

}  // namespace

void ClientSession::handleInput(std::span<const std::uint8_t> frame) {
  if (!authenticated_ || !services_.permission.cachedTrust()) return;
  if (const auto command = FrameDecoder::decode(frame)) std::visit(Dispatch{services_.pointer, heldKeys_}, *command);
}

}  // namespace orvel
