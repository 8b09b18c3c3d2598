#include "desktop/StoppedServer.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/WindowManager.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Foreground.hpp"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace orvel {
namespace {

/// A toolkit with windows of its own, that sees which of them has the keyboard and what is announced of starts.
class Toolkit {
 public:
  explicit Toolkit(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_);
  }
  ~Toolkit() { xcb_disconnect(connection_); }
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;

  xcb_window_t makeWindow(bool isUnmanaged = false) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 2> values{screen()->white_pixel, isUnmanaged ? 1u : 0u};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root(), 100, 100, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                      values.data());
    catchUp();
    return window;
  }

  void show(xcb_window_t window) {
    xcb_map_window(connection_, window);
    catchUp();
  }

  /// Has the window manager leave the keyboard where it is when the window is shown.
  void wantNoFocus(xcb_window_t window) {
    const std::uint32_t never = 0;
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1,
                        &never);
  }

  /// What the user does in whatever has the keyboard.
  void pressKey() {
    constexpr std::uint8_t someKey = 38;
    for (const int type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
      xcb_test_fake_input(connection_, static_cast<std::uint8_t>(type), someKey, XCB_CURRENT_TIME, root(), 0, 0, 0);
    }
    catchUp();
  }

  xcb_window_t focus() {
    const XCBPointer<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)};
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
  }

  /// The lowest first.
  std::vector<xcb_window_t> stack() {
    const XCBPointer<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root()), nullptr)};
    const auto* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
  }

  std::string text(xcb_window_t window, const std::string& property) {
    const auto asked = xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, 1000);
    const XCBPointer<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection_, asked, nullptr)};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
  }

  /// All that was announced of starts until now, each ended by a zero byte.
  std::string notices() {
    catchUp();
    const xcb_atom_t begin = atom("_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t more = atom("_NET_STARTUP_INFO");
    while (const XCBPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      const bool isNotice = (event->response_type & x11EventTypeMask) == XCB_CLIENT_MESSAGE &&
                            (message.type == begin || message.type == more);
      if (isNotice) notices_.append(reinterpret_cast<const char*>(message.data.data8), sizeof message.data.data8);
    }
    return notices_;
  }

 private:
  const xcb_screen_t* screen() const { return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data; }
  xcb_window_t root() const { return screen()->root; }

  /// All that was sent has then been taken by the server.
  void catchUp() { focus(); }

  xcb_atom_t atom(const std::string& name) {
    const auto asked = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XCBPointer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection_, asked, nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  xcb_connection_t* const connection_;
  std::string notices_;
};

/// The leaf and its connection.
class Leaf {
 public:
  explicit Leaf(const std::string& display)
      : connection_(X11Connection::open(display)), atoms_(*connection_), foreground(*connection_, atoms_) {
    connection_->listen(
        {.event = [this](const xcb_generic_event_t& event) { foreground.handle(event); }, .ended = [] {}});
  }
  ~Leaf() { connection_->stopListening(); }
  Leaf(const Leaf&) = delete;
  Leaf& operator=(const Leaf&) = delete;

  void bring(xcb_window_t window, const std::string& token) { foreground.bring(Panel(window), token); }

 private:
  class Panel final : public ToolkitWindow {
   public:
    explicit Panel(xcb_window_t window) : window_(window) {}

    std::uintptr_t nativeHandle() const override { return window_; }

   private:
    const xcb_window_t window_;
  };

  const std::unique_ptr<X11Connection> connection_;
  const X11Atoms atoms_;

 public:
  X11Foreground foreground;
};

struct ForegroundFixture : testing::Test {
  static bool eventually(const std::function<bool()>& isSo, Milliseconds limit = timeout) {
    const Deadline deadline(limit);
    while (!isSo()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(5));
    }
    return true;
  }

  bool hasKeyboard(xcb_window_t window, Milliseconds limit = timeout) {
    return eventually([&] { return toolkit.focus() == window; }, limit);
  }

  bool isToldToBeOver(const std::string& token) {
    return eventually([&] { return toolkit.notices().find("remove: ID=\"" + token + "\"") != std::string::npos; });
  }

  VirtualDesktop desktop;
  Toolkit toolkit{desktop.display()};
};

struct X11ForegroundTest : ForegroundFixture {
  /// The window of another program, which the user works in.
  xcb_window_t openOther() {
    const xcb_window_t window = program.makeWindow();
    program.show(window);
    EXPECT_TRUE(hasKeyboard(window));
    program.pressKey();
    return window;
  }

  bool isOnTop(xcb_window_t window) {
    return eventually([&] { return manager.stacking().back() == window; });
  }

  WindowManager manager{desktop};
  Toolkit program{desktop.display()};
  Leaf leaf{desktop.display()};
};

TEST_F(X11ForegroundTest, AWindowBehindAnotherComesToTheFront) {
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  ASSERT_TRUE(hasKeyboard(panel));
  const auto other = openOther();
  ASSERT_TRUE(isOnTop(other));
  leaf.bring(panel, "");
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isOnTop(panel));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == panel; }));
  EXPECT_EQ(toolkit.notices(), "");
}

TEST_F(X11ForegroundTest, AWindowThatWasShownWithoutTheKeyboardGetsIt) {
  const auto other = openOther();
  const auto panel = toolkit.makeWindow();
  toolkit.wantNoFocus(panel);
  toolkit.show(panel);
  ASSERT_FALSE(hasKeyboard(panel, lull));
  ASSERT_EQ(toolkit.focus(), other);
  leaf.bring(panel, "");
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isOnTop(panel));
}

TEST_F(X11ForegroundTest, AWindowThatIsShownLaterIsBroughtThen) {
  openOther();
  const auto panel = toolkit.makeWindow();
  toolkit.wantNoFocus(panel);
  leaf.bring(panel, "late_TIME1");
  std::this_thread::sleep_for(lull);
  EXPECT_EQ(toolkit.notices(), "") << "its start is not over";
  toolkit.show(panel);
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isToldToBeOver("late_TIME1"));
}

TEST_F(X11ForegroundTest, AMinimisedWindowIsShown) {
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  ASSERT_TRUE(hasKeyboard(panel));
  manager.minimise(panel);
  ASSERT_TRUE(eventually([&] { return manager.isMinimised(panel); }));
  openOther();
  leaf.bring(panel, "");
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_FALSE(manager.isMinimised(panel));
}

TEST_F(X11ForegroundTest, AWindowThatIsNotManagedGetsTheKeyboardToo) {
  openOther();
  const auto panel = toolkit.makeWindow(true);
  leaf.bring(panel, "");
  toolkit.show(panel);
  EXPECT_TRUE(hasKeyboard(panel));
}

TEST_F(X11ForegroundTest, TheTokenIsOnTheWindowAndItsStartIsOver) {
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  const std::string token = "orvel \"quoted\" \\ ü_TIME17";
  leaf.bring(panel, token);
  EXPECT_TRUE(isToldToBeOver("orvel \\\"quoted\\\" \\\\ ü_TIME17")) << toolkit.notices();
  EXPECT_EQ(toolkit.text(panel, "_NET_STARTUP_ID"), token);
}

TEST_F(X11ForegroundTest, AStartWithoutAWindowIsOver) {
  leaf.foreground.finishStart("");
  leaf.foreground.finishStart("hidden_TIME1");
  EXPECT_TRUE(isToldToBeOver("hidden_TIME1"));
  EXPECT_EQ(toolkit.notices().find("remove: ID=\"\""), std::string::npos);
}

TEST_F(X11ForegroundTest, TheLastWishCounts) {
  openOther();
  const auto never = toolkit.makeWindow();
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  leaf.bring(never, "first_TIME1");
  leaf.bring(panel, "second_TIME2");
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isToldToBeOver("first_TIME1"));
  EXPECT_TRUE(isToldToBeOver("second_TIME2"));
  toolkit.show(never);
  ASSERT_TRUE(hasKeyboard(never)) << "as the window manager does with new ones";
  leaf.bring(panel, "");
  EXPECT_TRUE(hasKeyboard(panel)) << "once more";
}

TEST_F(X11ForegroundTest, AWindowThatHasGoneIsHarmless) {
  leaf.bring(12345, "gone_TIME1");
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  openOther();
  leaf.bring(panel, "");
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isToldToBeOver("gone_TIME1"));
}

TEST_F(X11ForegroundTest, AServerThatHangsHoldsNobodyUp) {
  const auto panel = toolkit.makeWindow();
  toolkit.show(panel);
  openOther();
  {
    const StoppedServer stopped(desktop);
    const Deadline deadline(Milliseconds(500));
    leaf.bring(panel, "");
    leaf.foreground.finishStart("token");
    EXPECT_GT(deadline.left(), Milliseconds(0));
  }
  EXPECT_TRUE(hasKeyboard(panel));
}

TEST_F(X11ForegroundTest, WhenTheWindowManagerHasGoneTheServerGivesTheKeyboard) {
  openOther();
  const auto panel = toolkit.makeWindow();
  toolkit.wantNoFocus(panel);
  manager.kill();
  toolkit.show(panel);
  leaf.bring(panel, "token");
  EXPECT_TRUE(hasKeyboard(panel));
}

struct ForegroundWithoutManagerTest : ForegroundFixture {
  Leaf leaf{desktop.display()};
};

TEST_F(ForegroundWithoutManagerTest, TheWindowComesOnTopAndGetsTheKeyboard) {
  const auto panel = toolkit.makeWindow();
  const auto other = toolkit.makeWindow();
  toolkit.show(other);
  leaf.bring(panel, "token");
  toolkit.show(panel);
  EXPECT_TRUE(hasKeyboard(panel));
  EXPECT_TRUE(isToldToBeOver("token"));
  leaf.bring(other, "");
  EXPECT_TRUE(hasKeyboard(other));
  const auto stack = toolkit.stack();
  EXPECT_LT(std::find(stack.begin(), stack.end(), panel), std::find(stack.begin(), stack.end(), other));
}

}  // namespace
}  // namespace orvel
