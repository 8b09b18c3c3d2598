#pragma once

#include "base/Clock.hpp"
#include "base/Geometry.hpp"
#include "ui/Symbol.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvel {

class Appearance;
class Foreground;
class LoginItem;
class PanelHost;
class PanelWindow;
class PressWatch;
class StatusItem;

/// The icon and the panel that opens from it, as a small window and not as a menu. There is a panel only while it is
/// open. Threads: the main thread.
class MenuBarExtra {
 public:
  struct Parts {
    Appearance& appearance;
    const Clock& clock;
    Foreground& foreground;
    PanelHost& host;
    LoginItem& loginItem;
    PressWatch& presses;
    StatusItem& statusItem;
  };

  explicit MenuBarExtra(const Parts& parts);
  ~MenuBarExtra();
  MenuBarExtra(const MenuBarExtra&) = delete;
  MenuBarExtra& operator=(const MenuBarExtra&) = delete;

  /// Shows the icon. `decided` is called once it is known whether the desktop has a place for it. Called once.
  void show(std::function<void(bool hasIcon)> decided);

  /// Opens the panel, or brings it to the front: beside its icon, or as a normal window where there is none. `token` is
  /// the desktop's proof that the user wished it, if there is one.
  void openPanel(const std::string& token);

  /// Closes the panel if it is open.
  void closePanel();

  /// The state of the host has changed.
  void refresh();

 private:
  struct DeleteLater {
    void operator()(PanelWindow* window) const;
  };

  Symbol label() const;
  void iconActivated();
  void openPanelAt(const Rect& icon, const std::string& token);
  void bringPanel(const std::string& token);
  void panelDeactivated();
  void dismissPanel();
  void dismissPanelUnlessPointedAt();
  Rect likelyIconPlace() const;

  const Parts parts_;
  Symbol shownLabel_;
  std::optional<Rect> lastClick_;
  std::optional<Seconds> dismissedAt_;
  Seconds broughtAt_{0};
  std::unique_ptr<PanelWindow, DeleteLater> panel_;
};

}  // namespace orvel
