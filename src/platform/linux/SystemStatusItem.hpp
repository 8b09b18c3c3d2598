#pragma once

#include "ui/StatusItem.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QSystemTrayIcon;

namespace orvel {

class StatusNotifierWatch;
class TraySelection;

/// The icon in the desktop's tray: a status notifier item where the desktop shows such, else a window embedded in the
/// tray. The toolkit decides between the two once, when the first icon is made, and its decision holds for the whole
/// run; so it is made only when there is a place for it.
///
/// Threads: the main thread, with a QApplication around it.
class SystemStatusItem final : public StatusItem {
 public:
  SystemStatusItem();
  ~SystemStatusItem() override;

  void show(Symbol symbol, Handlers handlers) override;
  void setSymbol(Symbol symbol) override;
  bool isShown() const override;
  std::optional<Rect> place() const override;

 private:
  using Clock = std::chrono::steady_clock;

  void lookForPlace();
  void makeIcon();
  void decide();
  void click();

  Symbol symbol_ = Symbol::cursorArrow;
  Handlers handlers_;
  Clock::time_point clicked_;
  bool isStatusNotifier_ = false;
  std::unique_ptr<QSystemTrayIcon> icon_;
  std::unique_ptr<TraySelection> selection_;
  std::unique_ptr<StatusNotifierWatch> statusNotifiers_;
};

}  // namespace orvel
