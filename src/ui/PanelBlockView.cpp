#include "ui/PanelBlockView.hpp"

#include "ui/PanelLook.hpp"
#include "ui/ToggleSwitch.hpp"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace orvel {
namespace {

constexpr double sidePoints = 16;
constexpr double edgePoints = 12;
constexpr double rowGapPoints = 7;
constexpr int dividerHeight = 1;

}  // namespace

PanelBlockView::PanelBlockView(PanelBlock::Kind kind, const PanelLook& look, const PanelRowMaker::Handlers& handlers)
    : kind_(kind), make_(look, handlers), divider_(look.divider()), rows_(new QVBoxLayout(this)) {
  const int side = look.length(sidePoints);
  const int edge = look.length(edgePoints);
  const int above = kind == PanelBlock::Kind::header ? 0 : dividerHeight;
  // The switch ends where the link and the texts do.
  const int beyond = kind == PanelBlock::Kind::options ? ToggleSwitch::markRoom : 0;
  rows_->setContentsMargins(side, edge + above, side - beyond, edge);
  rows_->setSpacing(look.length(rowGapPoints));
}

void PanelBlockView::paintEvent(QPaintEvent*) {
  // Not a widget: screen readers need not know of it.
  if (kind_ != PanelBlock::Kind::header) QPainter(this).fillRect(0, 0, width(), dividerHeight, divider_);
}

bool PanelBlockView::shows(const std::vector<PanelRow>& rows) const {
  return std::ranges::equal(rows, shown_, {}, {}, &Shown::row);
}

void PanelBlockView::showRows(const std::vector<PanelRow>& rows) {
  std::vector<Shown> next;
  next.reserve(rows.size());
  for (const PanelRow& row : rows) next.push_back({row, widgetFor(row)});
  forget();
  for (QWidget* widget : std::exchange(forgotten_, {})) {
    widget->hide();
    // It may be the one whose button has just been pressed.
    widget->deleteLater();
  }
  shown_ = std::move(next);
  while (QLayoutItem* item = rows_->takeAt(0)) delete item;
  for (const Shown& shown : shown_) {
    const bool isNarrow = std::holds_alternative<PanelQR>(shown.row) || std::holds_alternative<PanelFields>(shown.row);
    rows_->addWidget(shown.widget, 0, isNarrow ? Qt::AlignHCenter : Qt::Alignment());
    shown.widget->show();
    // Screen readers go by this order.
    shown.widget->raise();
  }
}

QWidget* PanelBlockView::widgetFor(const PanelRow& row) {
  const auto found = std::ranges::find(shown_, row, &Shown::row);
  if (found == shown_.end()) return make(row);
  QWidget* widget = found->widget;
  shown_.erase(found);
  return widget;
}

QWidget* PanelBlockView::make(const PanelRow& row) const {
  QWidget* made = std::visit(make_, row);
  if (kind_ != PanelBlock::Kind::pairing) return made;
  if (auto* label = qobject_cast<QLabel*>(made)) label->setAlignment(Qt::AlignHCenter);
  return made;
}

void PanelBlockView::forget() {
  for (const Shown& shown : std::exchange(shown_, {})) forgotten_.push_back(shown.widget);
}

std::vector<QWidget*> PanelBlockView::controls() const {
  std::vector<QWidget*> controls;
  for (const Shown& shown : shown_) {
    auto within = shown.widget->findChildren<QWidget*>();
    within.prepend(shown.widget);
    std::ranges::copy_if(within, std::back_inserter(controls),
                         [](const QWidget* widget) { return (widget->focusPolicy() & Qt::TabFocus) != 0; });
  }
  return controls;
}

}  // namespace orvel
