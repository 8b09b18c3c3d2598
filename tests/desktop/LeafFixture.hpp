#pragma once

#include "desktop/Timeout.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/X11Witness.hpp"
#include "platform/linux/SystemWorkspace.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/Files.hpp"
#include "platform/linux/x11/WindowSearch.hpp"
#include "platform/linux/x11/X11Access.hpp"
#include "platform/linux/x11/X11ActivationTokens.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/X11EventPoster.hpp"
#include "platform/linux/x11/X11ThemeSettings.hpp"
#include "platform/linux/x11/X11Windows.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// The leaves of one X server, and the thread that serves them.
class LeafSet {
 public:
  explicit LeafSet(const VirtualDesktop& desktop) : LeafSet(desktop.display()) {}
  explicit LeafSet(const std::string& display) : connection_(X11Connection::open(display)) {
    connection_->listen({.event =
                             [this](const xcb_generic_event_t& event) {
                               displays.handle(event);
                               events.handle(event);
                               windows.handle(event);
                             },
                         .ended = [this] { ended_.set_value(); }});
  }
  ~LeafSet() { connection_->stopListening(); }

  X11Connection& connection() { return *connection_; }
  FindWindowAt findWindow() {
    return [this](Point position) { return findWindowAt(*connection_, position); };
  }

  /// Whether the end of the server is reported in time.
  bool waitForEnd() { return ended_.get_future().wait_for(timeout) == std::future_status::ready; }

 private:
  const std::unique_ptr<X11Connection> connection_;
  const DataFolders dataFolders_ = DataFolders::ofUser();
  DesktopEntries desktopEntries_{dataFolders_.shared};
  std::promise<void> ended_;  // throws when it is set twice

 public:
  X11Displays displays{*connection_};
  X11EventPoster events{*connection_, displays};
  X11TrustCheck trust{*connection_};
  X11Atoms atoms{*connection_};
  ServerTime time{*connection_};
  X11Windows windows{*connection_, atoms, time};
  X11ActivationTokens tokens{*connection_, atoms, time};
  X11ThemeSettings theme{*connection_};
  SystemWorkspace workspace{windows, tokens, theme, desktopEntries_, dataFolders_, {RLIM_INFINITY, RLIM_INFINITY}};
};

/// A desktop, the leaves on it, and a program that sees what they do.
struct LeafFixture : testing::Test {
  void post(MouseEventType type, Point position) {
    EXPECT_TRUE(leaves.events.post(MouseEvent{.type = type, .position = position}));
  }

  void scroll(int wheel1, int wheel2) {
    EXPECT_TRUE(leaves.events.post(ScrollEvent{.wheel1 = wheel1, .wheel2 = wheel2}));
  }

  void key(std::uint16_t keyCode, bool down, std::uint64_t flags = 0) {
    EXPECT_TRUE(leaves.events.post(KeyEvent{.keyCode = keyCode, .down = down, .flags = flags}));
  }

  /// Flushes, and returns what the other program has got since the last call.
  X11Witness::Inputs delivered() {
    leaves.events.flush();
    leaves.events.pointerLocation();  // the server has then taken all that was posted
    auto inputs = witness.catchUp();
    witness.forget();
    return inputs;
  }

  VirtualDesktop desktop;
  LeafSet leaves{desktop};
  X11Witness witness{desktop.display()};
};

}  // namespace orvel
