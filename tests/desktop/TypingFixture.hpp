#pragma once

#include "base/Clock.hpp"
#include "base/UTF8.hpp"
#include "desktop/LeafFixture.hpp"
#include "desktop/TypingProgram.hpp"
#include "input/KeyboardDriver.hpp"
#include "platform/linux/x11/keyboard/KeyboardMap.hpp"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace orvel {

/// A desktop with a window manager, the leaves on it, and text that is typed by them.
struct TypingFixture : testing::Test {
  TypingFixture() {
    EXPECT_TRUE(eventually([this] { return std::filesystem::exists(managed_); })) << "no window manager";
  }

  /// Waits until something becomes true. False when it does not in time.
  template <class Condition>
  static bool eventually(Condition isTrue, Milliseconds limit = timeout) {
    const Deadline deadline(limit);
    while (!isTrue()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(5));
    }
    return true;
  }

  void startProgram(const std::string& name) {
    program = TypingProgram::start(desktop, name);
    EXPECT_TRUE(eventually([this] { return rootProperty("_NET_ACTIVE_WINDOW") != 0; }));
  }

  void setLayout(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"setxkbmap"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    // Servers of the same number in other namespaces write their maps to the same file, and may be in its way.
    EXPECT_TRUE(eventually([&] { return desktop.run(command) == 0; }));
  }

  /// Types `text` and checks that the program has got just that, once.
  void expectTyped(const std::string& text) { expectTyped(text, text); }
  void expectTyped(const std::string& text, const std::string& expected) {
    expected_ += expected;
    auto typing = std::async(std::launch::async, [&] { driver.type(text); });
    // What the program says must be taken from it meanwhile, or it stops to wait for that.
    while (typing.wait_for(Milliseconds(5)) != std::future_status::ready) program->content();
    EXPECT_EQ(program->contentExpecting(expected_), expected_);
  }

  void pressCapsLock() {
    constexpr std::uint8_t capsLock = 66;
    xcb_connection_t* server = leaves.connection().get();
    for (const int type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
      xcb_test_fake_input(server, static_cast<std::uint8_t>(type), capsLock, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(server);
  }

  /// Locks these of the affected modifiers, and a group, as sticky keys and layout switches do.
  void lock(std::uint8_t affected, std::uint8_t modifiers, std::uint8_t group = 0) {
    xcb_connection_t* server = leaves.connection().get();
    xcb_xkb_latch_lock_state(server, XCB_XKB_ID_USE_CORE_KBD, affected, modifiers, true, group, 0, false, 0);
    xcb_flush(server);
  }

  bool isControlLocked() {
    xcb_connection_t* server = leaves.connection().get();
    const XCBPointer<xcb_xkb_get_state_reply_t> state{
        xcb_xkb_get_state_reply(server, xcb_xkb_get_state(server, XCB_XKB_ID_USE_CORE_KBD), nullptr)};
    return state && (state->lockedMods & XCB_MOD_MASK_CONTROL) != 0;
  }

  bool isCapsLocked() {
    xcb_connection_t* server = leaves.connection().get();
    const auto asked = xcb_query_pointer(server, leaves.connection().root());
    const XCBPointer<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(server, asked, nullptr)};
    return reply && (reply->mask & XCB_MOD_MASK_LOCK) != 0;
  }

  /// What all keys mean to programs, by the core protocol.
  std::vector<xcb_keysym_t> keyboardMap() {
    xcb_connection_t* server = leaves.connection().get();
    const auto* setup = xcb_get_setup(server);
    const auto first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    const XCBPointer<xcb_get_keyboard_mapping_reply_t> reply{
        xcb_get_keyboard_mapping_reply(server, xcb_get_keyboard_mapping(server, first, count), nullptr)};
    if (!reply) return {};
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    return {symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(reply.get())};
  }

  /// The first number of a property of the root window; 0 when it is not there.
  std::uint32_t rootProperty(const std::string& property) {
    xcb_connection_t* server = leaves.connection().get();
    const auto asked = xcb_intern_atom(server, false, static_cast<std::uint16_t>(property.size()), property.data());
    const XCBPointer<xcb_intern_atom_reply_t> atom{xcb_intern_atom_reply(server, asked, nullptr)};
    const XCBPointer<xcb_get_property_reply_t> value{xcb_get_property_reply(
        server, xcb_get_property(server, false, leaves.connection().root(), atom->atom, XCB_ATOM_ANY, 0, 1), nullptr)};
    const bool isThere = value && xcb_get_property_value_length(value.get()) >= int{sizeof(std::uint32_t)};
    return isThere ? *static_cast<const std::uint32_t*>(xcb_get_property_value(value.get())) : 0;
  }

  VirtualDesktop desktop;
  LeafSet leaves{desktop};
  SystemClock clock;
  KeyboardDriver driver{leaves.events, clock};
  std::unique_ptr<TypingProgram> program;

 private:
  // Windows that are shown before it says that it has started do not get the keyboard from it.
  const std::filesystem::path managed_ = desktop.home() / "managed";
  ChildProcess windowManager_{{.command = {"openbox", "--sm-disable", "--startup", "touch " + managed_.string()},
                               .environment = desktop.environment()}};
  std::string expected_;
};

}  // namespace orvel
