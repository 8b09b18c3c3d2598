#include "ui/PanelWindow.hpp"

#include "ui/PanelLook.hpp"
#include "ui/PanelView.hpp"
#include "ui/Widgets.hpp"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <utility>

namespace orvel {
namespace {

constexpr std::chrono::milliseconds lookInterval{1500};
constexpr int frameWidth = 1;

QScreen* screenAt(const Rect& icon) {
  QScreen* screen = QGuiApplication::screenAt({static_cast<int>(icon.centre().x), static_cast<int>(icon.centre().y)});
  return screen == nullptr ? QGuiApplication::primaryScreen() : screen;
}

Qt::WindowFlags flagsOf(PanelWindow::Kind kind) {
  if (kind == PanelWindow::Kind::normal) return Qt::Window;
  return Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
}

Rect rectOf(const QRect& rect) {
  return {{static_cast<double>(rect.x()), static_cast<double>(rect.y())},
          {static_cast<double>(rect.width()), static_cast<double>(rect.height())}};
}

}  // namespace

PanelPlacement::Monitor monitorOf(const QScreen& screen) {
  return {.whole = rectOf(screen.geometry()), .free = rectOf(screen.availableGeometry())};
}

PanelWindow::PanelWindow(Kind kind, PanelHost& host, LoginItem& loginItem, const Appearance& appearance,
                         Handlers handlers)
    : QDialog(nullptr, flagsOf(kind)),
      kind_(kind),
      appearance_(appearance),
      handlers_(std::move(handlers)),
      model_(host, loginItem),
      view_(new PanelView(model_, appearance, [this](QWidget* opened) { showChanged(opened); })),
      scroll_(new QScrollArea) {
  setWindowTitle(QStringLiteral("Orvel"));
  // The first Tab goes to the first control; none is marked before.
  setFocusPolicy(Qt::ClickFocus);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setWidget(view_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(frameWidth, frameWidth, frameWidth, frameWidth);
  layout->addWidget(scroll_);
  lookAgain_.setInterval(lookInterval);
  lookAgain_.callOnTimeout(this, [this] { refresh(); });
}

void PanelWindow::place(const Rect& icon) {
  icon_ = icon;
  restyle();
}

void PanelWindow::open() {
  model_.appear();
  show();
  setFocus();
  lookAgain_.start();
}

void PanelWindow::refresh() {
  view_->refresh();
}

void PanelWindow::restyle() {
  const PanelLook look(appearance_);
  setPalette(look.palette());
  frame_ = look.frame();
  scroll_->verticalScrollBar()->setStyleSheet(look.scrollBarStyleSheet());
  view_->restyle();
}

void PanelWindow::showChanged(QWidget* opened) {
  fit();
  if (opened == nullptr) return;
  scroll_->ensureWidgetVisible(opened);
  // Whole, where there is no room for all.
  if (auto* code = opened->findChild<QWidget*>(QRView::name())) scroll_->ensureWidgetVisible(code);
}

void PanelWindow::fit() {
  const QScreen* screen = kind_ == Kind::normal && isVisible() ? this->screen() : screenAt(icon_);
  const QRect free = screen->availableGeometry();
  const int margin = static_cast<int>(2 * PanelPlacement::gap);
  const int frame = 2 * frameWidth;
  const int bar = scroll_->verticalScrollBar()->sizeHint().width();
  view_->fit(free.width() - margin - frame - bar);
  const QSize whole = view_->size();
  // A normal window has a title, too.
  const QSize title = frameGeometry().size() - geometry().size();
  const int height = std::min(whole.height() + frame, free.height() - margin - title.height());
  const bool scrolls = height < whole.height() + frame;
  const QSize size(whole.width() + frame + (scrolls ? bar : 0), height);
  if (kind_ == Kind::normal) return fitNormally(size, free);
  const Point place = PanelPlacement::at(icon_, {static_cast<double>(size.width()), static_cast<double>(size.height())},
                                         monitorOf(*screen));
  setGeometry({QPoint(static_cast<int>(place.x), static_cast<int>(place.y)), size});
}

void PanelWindow::fitNormally(const QSize& size, const QRect& free) {
  setFixedSize(size);
  const int below = pos().y() + frameGeometry().height() - free.bottom();
  if (isVisible() && below > 0) move(pos().x(), std::max(free.top(), pos().y() - below));
}

bool PanelWindow::focusNextPrevChild(bool next) {
  const bool hasMoved = QDialog::focusNextPrevChild(next);
  if (hasMoved && focusWidget() != nullptr) scroll_->ensureWidgetVisible(focusWidget());
  return hasMoved;
}

bool PanelWindow::event(QEvent* event) {
  // A menu of its own may take the keyboard from it.
  const bool hasLeft = event->type() == QEvent::WindowDeactivate && QApplication::activePopupWidget() == nullptr;
  if (hasLeft && kind_ == Kind::besideIcon) handlers_.deactivated();
  return QDialog::event(event);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
  // A window that refuses would keep some desktops from ending the login.
  event->accept();
  handlers_.dismissed();
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return handlers_.dismissed();
  QScrollBar* bar = scroll_->verticalScrollBar();
  if (event->key() == Qt::Key_PageDown) return bar->triggerAction(QScrollBar::SliderPageStepAdd);
  if (event->key() == Qt::Key_PageUp) return bar->triggerAction(QScrollBar::SliderPageStepSub);
  // A dialog would press a button for Return that nobody has chosen.
  event->ignore();
}

void PanelWindow::paintEvent(QPaintEvent*) {
  if (kind_ == Kind::normal) return;
  QPainter painter(this);
  painter.setPen(frame_);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace orvel
