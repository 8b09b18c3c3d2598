#include "ui/MenuBarExtra.hpp"

#include "ui/Appearance.hpp"
#include "ui/Foreground.hpp"
#include "ui/PanelHost.hpp"
#include "ui/PanelPlacement.hpp"
#include "ui/PanelWindow.hpp"
#include "ui/PressWatch.hpp"
#include "ui/StatusItem.hpp"

#include <QApplication>
#include <QCoreApplication>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace orvel {
namespace {

/// Between the press of a click on the icon, which takes the keyboard from the panel, and its release, which opens it.
constexpr Seconds longestClick{0.4};

Rect pointerPlace() {
  const QPoint pointer = QCursor::pos();
  return {{static_cast<double>(pointer.x()), static_cast<double>(pointer.y())}, {0, 0}};
}

}  // namespace

void MenuBarExtra::DeleteLater::operator()(PanelWindow* window) const {
  // One of its own events may be what ends it.
  window->deleteLater();
}

MenuBarExtra::MenuBarExtra(const Parts& parts) : parts_(parts), shownLabel_(label()) {
  parts_.appearance.observe([this] {
    if (panel_) panel_->restyle();
  });
}

MenuBarExtra::~MenuBarExtra() {
  delete panel_.release();
  // One that was closed after the main loop had ended still waits to be deleted.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void MenuBarExtra::show(std::function<void(bool hasIcon)> decided) {
  parts_.statusItem.show(shownLabel_, {.activated = [this] { iconActivated(); }, .decided = std::move(decided)});
}

Symbol MenuBarExtra::label() const {
  return parts_.host.state().clients.empty() ? Symbol::cursorArrow : Symbol::cursorArrowRays;
}

void MenuBarExtra::refresh() {
  if (const Symbol symbol = label(); symbol != shownLabel_) {
    shownLabel_ = symbol;
    parts_.statusItem.setSymbol(symbol);
  }
  if (panel_) panel_->refresh();
}

void MenuBarExtra::iconActivated() {
  if (panel_) {
    // A window from before there was an icon may be anywhere, or covered: the panel is wanted here.
    const bool wasHere = panel_->kind() == PanelWindow::Kind::besideIcon;
    closePanel();
    if (wasHere) return;
  }
  const bool hasJustClosed = dismissedAt_ && parts_.clock.now() - *dismissedAt_ < longestClick;
  dismissedAt_.reset();
  if (hasJustClosed) return;
  lastClick_ = parts_.statusItem.place().value_or(pointerPlace());
  openPanelAt(*lastClick_, {});
}

void MenuBarExtra::openPanel(const std::string& token) {
  if (!panel_) return openPanelAt(likelyIconPlace(), token);
  bringPanel(token);
}

void MenuBarExtra::openPanelAt(const Rect& icon, const std::string& token) {
  const auto kind = parts_.statusItem.isShown() ? PanelWindow::Kind::besideIcon : PanelWindow::Kind::normal;
  panel_.reset(
      new PanelWindow(kind, parts_.host, parts_.loginItem, parts_.appearance,
                      {.dismissed = [this] { dismissPanel(); }, .deactivated = [this] { panelDeactivated(); }}));
  panel_->place(icon);
  if (kind == PanelWindow::Kind::besideIcon) parts_.foreground.keepOutOfList(*panel_);
  panel_->open();
  if (kind == PanelWindow::Kind::besideIcon) parts_.presses.begin([this] { dismissPanelUnlessPointedAt(); });
  bringPanel(token);
}

void MenuBarExtra::bringPanel(const std::string& token) {
  broughtAt_ = parts_.clock.now();
  parts_.foreground.bring(*panel_, token);
}

void MenuBarExtra::panelDeactivated() {
  // Not the user has done that, whose press elsewhere is heard of in any case.
  if (parts_.clock.now() - broughtAt_ < parts_.foreground.settlingTime()) return;
  dismissPanel();
}

void MenuBarExtra::dismissPanel() {
  if (!panel_) return;
  dismissedAt_ = parts_.clock.now();
  closePanel();
}

void MenuBarExtra::dismissPanelUnlessPointedAt() {
  // A menu of the panel's may reach beyond it.
  if (QApplication::activePopupWidget() != nullptr) return;
  if (panel_ && !panel_->frameGeometry().contains(QCursor::pos())) dismissPanel();
}

void MenuBarExtra::closePanel() {
  parts_.presses.end();
  // Hiding it takes the keyboard from it, which must not count as another dismissal.
  if (const auto closing = std::move(panel_)) closing->hide();
}

Rect MenuBarExtra::likelyIconPlace() const {
  if (const auto place = parts_.statusItem.place()) return *place;
  if (lastClick_) return *lastClick_;
  const QScreen* screen = QGuiApplication::primaryScreen();
  return PanelPlacement::usualCorner(monitorOf(*screen));
}

}  // namespace orvel
