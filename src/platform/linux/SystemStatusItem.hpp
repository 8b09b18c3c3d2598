#pragma once

#include "ui/StatusItem.hpp"

#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QSystemTrayIcon;

namespace orvel {

class EmbeddedIcon;
class StatusNotifierWatch;
class EmbeddingTray;

/// The icon in the desktop's tray: a status notifier item where the desktop shows such, else a window embedded in the
/// tray. Which of them is decided once, when there is a first place for it.
///
/// Threads: the main thread, with a QApplication around it.
class SystemStatusItem final : public StatusItem {
 public:
  /// Follows the tray into which windows can be embedded, as a backend does; may return null.
  using MakeTray = std::function<std::unique_ptr<EmbeddingTray>(std::function<void()> changed)>;

  explicit SystemStatusItem(MakeTray makeTray);
  ~SystemStatusItem() override;

  void show(Symbol symbol, Handlers handlers) override;
  void setSymbol(Symbol symbol) override;
  bool isShown() const override;
  std::optional<Rect> place() const override;

 private:
  using Clock = std::chrono::steady_clock;

  void lookForPlace();
  void followTray();
  void makeItem();
  void embed();
  void decide();
  bool hasTray() const;
  void click();

  Symbol symbol_ = Symbol::cursorArrow;
  Handlers handlers_;
  Clock::time_point clicked_;
  bool isEmbedded_ = false;  // it is, or comes back when a tray does
  std::unique_ptr<QSystemTrayIcon> item_;
  std::unique_ptr<EmbeddedIcon> embedded_;
  const MakeTray makeTray_;
  std::unique_ptr<EmbeddingTray> tray_;  // null where windows cannot be embedded
  QTimer trayChanged_;
  std::unique_ptr<StatusNotifierWatch> statusNotifiers_;
};

}  // namespace orvel
