#pragma once

#include "base/Geometry.hpp"
#include "desktop/ChildProcess.hpp"
#include "desktop/DesktopView.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/Timeout.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace orvel {

/// A panel of somebody else along an edge of the desktop, with a tray and nothing besides. It is painted in one colour,
/// so whatever has another colour in it is an icon, by whichever protocol it came there.
///
/// Threads: one at a time; the thread that started it must live as long as it runs.
class TrayHost {
 public:
  enum class Kind {
    tint2,  ///< XEmbed.
    lxqt,   ///< StatusNotifierItem.
    xfce    ///< Both.
  };
  enum class Edge { top, bottom, left, right };
  enum class Button : std::uint8_t { left = 1, middle = 2, right = 3 };

  struct Look {
    Kind kind = Kind::tint2;
    Edge edge = Edge::bottom;
    bool isDark = true;
  };

  static constexpr int thickness = 32;

  /// Does not start it yet. The desktop must have a window manager, and outlive it as the bus must.
  TrayHost(const VirtualDesktop& desktop, const SessionBus& bus, const Look& look);
  ~TrayHost();
  TrayHost(const TrayHost&) = delete;
  TrayHost& operator=(const TrayHost&) = delete;

  /// Starts it and waits until programs can have an icon there and it is painted. Throws when that does not come.
  void start();

  /// Stops it, and all that it has started, and waits until it cannot be seen any more.
  void stop();

  /// Signals it, to hold it or to let it go on. `start` comes before.
  void signal(int number) { panel_->signal(number); }

  /// The part of the screen that it covers.
  Rect place() const;

  /// What its icons cover now, all in all. Nothing when there is none.
  std::optional<Rect> iconPlace() const;

  /// Waits until it shows an icon that has stopped to move. Nothing when none comes in time.
  std::optional<Rect> waitForIcon(Milliseconds limit = timeout) const;

  /// Waits until it shows no icon. False when there is still one after that time.
  bool waitForNoIcon(Milliseconds limit = timeout) const;

  /// Waits for the icon, then moves the pointer to its middle and presses and releases a button so many times.
  /// False without an icon.
  bool clickIcon(Button button = Button::left, int times = 1) const;

 private:
  std::vector<std::string> command() const;
  void writeTint2Settings() const;
  void writeLxqtSettings() const;
  void writeXfceSettings() const;
  void forgetXfceSettings() const;
  bool isServing() const;
  bool isStill(const std::optional<Rect>& icon) const;
  bool isPainted(const Picture& picture) const;
  bool ownsXEmbedTray() const;
  bool isStatusNotifierHost() const;

  const VirtualDesktop& desktop_;
  const SessionBus& bus_;
  const Look look_;
  xcb_connection_t* const connection_;
  const DesktopView view_;
  std::optional<ChildProcess> panel_;
};

/// For the names of tests.
const char* nameOf(TrayHost::Kind kind);
std::string nameOf(const TrayHost::Look& look);

/// For the messages of tests.
void PrintTo(const TrayHost::Look& look, std::ostream* out);

}  // namespace orvel
