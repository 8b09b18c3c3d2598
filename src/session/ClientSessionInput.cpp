#include "catalog/AppCatalog.hpp"
#include "input/EventPoster.hpp"
#include "input/FrameDecoder.hpp"
#include "input/KeyboardDriver.hpp"
#include "input/MediaDriver.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"

#include <utility>

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
  const KeyEvent event{.keyCode = key.keyCode, .down = key.down, .flags = flagsOf(key.modifiers)};
  pressAfterTexts([&keys = services_.keys, phone = phone_, event] { keys.post(phone, event); });
}

void ClientSession::carryOut(const FrameDecoder::Text& text) {
  typeLater(
      [&keyboard = services_.keyboard, &keys = services_.keys, &events = services_.events, phone = phone_,
       ended = ended_, text = text.text] {
        if (*ended) {
          // Nobody is there any more to release what was pressed before it.
          keys.releaseAll(phone);
          events.flush();
        }
        keyboard.type(text);
      },
      taskCost + text.text.size());
}

void ClientSession::carryOut(const FrameDecoder::Media& media) {
  const auto code = MediaDriver::code(media.code);
  if (code) pressAfterTexts([&driver = services_.media, code = *code] { driver.press(code); });
}

/// Presses keys at once, or behind the texts and keys of this phone that are still to be typed.
void ClientSession::pressAfterTexts(Task press) {
  if (typingLeft_ == 0) {
    press();
    return;
  }
  typeLater(
      [&keyboard = services_.keyboard, &events = services_.events, press = std::move(press)] {
        // The text before it may have been cancelled, and Return would send the half of it.
        if (keyboard.isStopped()) return;
        press();
        events.flush();
      },
      taskCost);
}

void ClientSession::typeLater(Task task, std::size_t cost) {
  ++typingLeft_;
  handOff(
      [self = weak_from_this(), &queue = transport_->queue(), task = std::move(task)] {
        task();
        queue.post([self] {
          if (const auto session = self.lock()) --session->typingLeft_;
        });
      },
      cost);
}

/// Lets go of what the phone holds down.
void ClientSession::releaseAll() {
  services_.pointer.releaseAll();
  services_.keys.releaseAll(phone_);
  services_.events.flush();
}

/// Lets go of what the keys that wait behind texts will hold down. For a phone that has left: another one still sends
/// their releases.
void ClientSession::releaseAfterTexts() {
  if (typingLeft_ == 0) return;
  work_->post([&keys = services_.keys, &events = services_.events, phone = phone_] {
    keys.releaseAll(phone);
    events.flush();
  });
}

void ClientSession::carryOut(const FrameDecoder::App& app) {
  const bool quits = app.action == quitAction;
  handOff([&apps = services_.apps, quits,
           bundleID = app.bundleID] { quits ? apps.quit(bundleID) : apps.activate(bundleID); },
          taskCost + app.bundleID.size());
}

}  // namespace orvel
