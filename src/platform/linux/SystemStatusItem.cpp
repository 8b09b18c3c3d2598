#include "platform/linux/SystemStatusItem.hpp"

#include "platform/linux/tray/StatusNotifierWatch.hpp"
#include "platform/linux/tray/TraySelection.hpp"
#include "ui/SymbolImage.hpp"

#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <QRect>
#include <QString>
#include <QSystemTrayIcon>
#include <utility>

namespace orvel {
namespace {

/// Drawn in the sizes that trays have, for a picture that is scaled is not sharp.
QIcon iconOf(Symbol symbol) {
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48, 64}) icon.addPixmap(QPixmap::fromImage(SymbolImage::plain(symbol, side)));
  return icon;
}

}  // namespace

SystemStatusItem::SystemStatusItem() = default;

SystemStatusItem::~SystemStatusItem() = default;

void SystemStatusItem::show(Symbol symbol, Handlers handlers) {
  symbol_ = symbol;
  handlers_ = std::move(handlers);
  // Whoever comes, the newer protocol is asked for first.
  selection_ = std::make_unique<TraySelection>([this] { statusNotifiers_->ask(); });
  statusNotifiers_ = std::make_unique<StatusNotifierWatch>([this] { lookForPlace(); });
}

void SystemStatusItem::lookForPlace() {
  if (icon_) return;  // the toolkit brings it back by itself
  isStatusNotifier_ = statusNotifiers_->host() == StatusNotifierWatch::Host::present;
  const bool canEmbed = statusNotifiers_->host() == StatusNotifierWatch::Host::absent && selection_->isOwned();
  if (isStatusNotifier_ || canEmbed) makeIcon();
  decide();
}

void SystemStatusItem::decide() {
  if (const auto decided = std::exchange(handlers_.decided, {})) decided(isShown());
}

void SystemStatusItem::makeIcon() {
  icon_ = std::make_unique<QSystemTrayIcon>(iconOf(symbol_));
  icon_->setToolTip(QStringLiteral("Orvel"));
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, [this] { click(); });
  icon_->show();
}

/// Some desktops tell of a double click as one click and a double one, others as two clicks: it counts once.
void SystemStatusItem::click() {
  const auto now = Clock::now();
  if (now - clicked_ < std::chrono::milliseconds(QApplication::doubleClickInterval())) return;
  clicked_ = now;
  handlers_.activated();
}

void SystemStatusItem::setSymbol(Symbol symbol) {
  symbol_ = symbol;
  if (icon_) icon_->setIcon(iconOf(symbol));
}

bool SystemStatusItem::isShown() const {
  if (!icon_) return false;
  return isStatusNotifier_ ? statusNotifiers_->host() == StatusNotifierWatch::Host::present : selection_->isOwned();
}

std::optional<Rect> SystemStatusItem::place() const {
  if (!isShown()) return std::nullopt;
  const QRect covered = icon_->geometry();
  if (covered.isEmpty()) return std::nullopt;
  return Rect{{double(covered.x()), double(covered.y())}, {double(covered.width()), double(covered.height())}};
}

}  // namespace orvel
