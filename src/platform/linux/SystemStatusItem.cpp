#include "platform/linux/SystemStatusItem.hpp"

#include "platform/linux/tray/EmbeddedIcon.hpp"
#include "platform/linux/tray/EmbeddingTray.hpp"
#include "platform/linux/tray/StatusNotifierWatch.hpp"
#include "ui/SymbolImage.hpp"

#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QSystemTrayIcon>
#include <utility>

namespace orvel {
namespace {

const QString name = QStringLiteral("Orvel");

/// Drawn in the sizes that trays have, for a picture that is scaled is not sharp.
QIcon iconOf(Symbol symbol) {
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48, 64}) icon.addPixmap(QPixmap::fromImage(SymbolImage::plain(symbol, side)));
  return icon;
}

}  // namespace

SystemStatusItem::SystemStatusItem(MakeTray makeTray) : makeTray_(std::move(makeTray)) {}

SystemStatusItem::~SystemStatusItem() = default;

void SystemStatusItem::show(Symbol symbol, Handlers handlers) {
  symbol_ = symbol;
  handlers_ = std::move(handlers);
  trayChanged_.setSingleShot(true);
  QObject::connect(&trayChanged_, &QTimer::timeout, [this] { followTray(); });
  tray_ = makeTray_([this] { trayChanged_.start(0); });
  statusNotifiers_ = std::make_unique<StatusNotifierWatch>([this] { lookForPlace(); });
}

void SystemStatusItem::followTray() {
  if (!hasTray()) {
    embedded_.reset();  // what a tray leaves behind would lie on the bare screen
  } else if (isEmbedded_) {
    embed();
  } else {
    statusNotifiers_->ask();  // whoever comes, the newer protocol is asked for first
  }
}

void SystemStatusItem::lookForPlace() {
  if (item_) return;  // the toolkit brings it back by itself
  const auto host = statusNotifiers_->host();
  if (!isEmbedded_ && host == StatusNotifierWatch::Host::present) makeItem();
  if (!isEmbedded_ && host == StatusNotifierWatch::Host::absent && hasTray()) embed();
  decide();
}

bool SystemStatusItem::hasTray() const {
  return tray_ && tray_->isOwned();
}

void SystemStatusItem::decide() {
  if (const auto decided = std::exchange(handlers_.decided, {})) decided(isShown());
}

void SystemStatusItem::makeItem() {
  item_ = std::make_unique<QSystemTrayIcon>(iconOf(symbol_));
  item_->setToolTip(name);
  QObject::connect(item_.get(), &QSystemTrayIcon::activated, [this] { click(); });
  item_->show();
}

void SystemStatusItem::embed() {
  isEmbedded_ = true;
  if (embedded_ && embedded_->tray() == tray_->ownership()) return;
  embedded_ = std::make_unique<EmbeddedIcon>(*tray_, iconOf(symbol_), [this] { click(); });
  embedded_->setToolTip(name);
}

/// Some desktops report a double click as one click and a double one, others as two clicks: it counts once.
void SystemStatusItem::click() {
  const auto now = Clock::now();
  if (now - clicked_ < std::chrono::milliseconds(QApplication::doubleClickInterval())) return;
  clicked_ = now;
  handlers_.activated();
}

void SystemStatusItem::setSymbol(Symbol symbol) {
  symbol_ = symbol;
  if (item_) item_->setIcon(iconOf(symbol));
  if (embedded_) embedded_->setIcon(iconOf(symbol));
}

bool SystemStatusItem::isShown() const {
  if (item_) return statusNotifiers_->host() == StatusNotifierWatch::Host::present;
  return embedded_ && hasTray();
}

std::optional<Rect> SystemStatusItem::place() const {
  if (!isShown()) return std::nullopt;
  const QRect covered = item_ ? item_->geometry() : QRect(embedded_->mapToGlobal(QPoint(0, 0)), embedded_->size());
  if (covered.isEmpty()) return std::nullopt;
  return Rect{{double(covered.x()), double(covered.y())}, {double(covered.width()), double(covered.height())}};
}

}  // namespace orvel
