#pragma once

#include "base/Geometry.hpp"
#include "ui/Foreground.hpp"
#include "ui/PanelModel.hpp"
#include "ui/PanelPlacement.hpp"

#include <QColor>
#include <QDialog>
#include <QTimer>
#include <cstdint>
#include <functional>

class QScreen;
class QScrollArea;

namespace orvel {

class Appearance;
class PanelView;

/// The screen as a place for the panel, in the toolkit's units.
PanelPlacement::Monitor monitorOf(const QScreen& screen);

/// The small window in which the panel is open: without a frame beside the icon, or as a normal window where there is
/// no icon. While it is open it looks every now and then whether what it shows still holds, for a network or an entry
/// of the login's list changes without notice.
///
/// Threads: the main thread.
class PanelWindow final : public QDialog, public ToolkitWindow {
 public:
  enum class Kind { besideIcon, normal };

  struct Handlers {
    std::function<void()> dismissed;    ///< The user is done with it: Escape, or the close button of a normal window.
    std::function<void()> deactivated;  ///< It has lost the keyboard. Not called for a normal window.
  };

  /// All must outlive it.
  PanelWindow(Kind kind, PanelHost& host, LoginItem& loginItem, const Appearance& appearance, Handlers handlers);

  Kind kind() const { return kind_; }
  std::uintptr_t nativeHandle() const override { return winId(); }

  /// Makes it as large as what it shows, and puts it beside the icon. Called before its native window is made, which
  /// would not know of its place otherwise.
  void place(const Rect& icon);

  /// Shows it.
  void open() override;

  /// The state of the host has changed.
  void refresh();

  /// The look of the desktop has changed.
  void restyle();

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void showChanged(QWidget* opened);
  void fit();
  void fitNormally(const QSize& size, const QRect& free);

  const Kind kind_;
  const Appearance& appearance_;
  const Handlers handlers_;
  PanelModel model_;
  PanelView* view_;
  QScrollArea* scroll_;
  Rect icon_;
  QColor frame_;
  QTimer lookAgain_;
};

}  // namespace orvel
