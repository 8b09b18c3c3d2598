#include "ui/PanelView.hpp"

#include "ui/PanelModel.hpp"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace orvel {
namespace {

constexpr double widthPoints = 288;
constexpr double sidePoints = 16;
constexpr double edgePoints = 12;
constexpr double rowGapPoints = 7;

QFrame* divider(const QColor& color) {
  auto* line = new QFrame;
  line->setFixedHeight(1);
  line->setAutoFillBackground(true);
  QPalette palette;
  palette.setColor(QPalette::Window, color);
  line->setPalette(palette);
  return line;
}

}  // namespace

PanelView::PanelView(PanelModel& model, const Appearance& appearance, std::function<void()> changed)
    : model_(model),
      appearance_(appearance),
      look_(appearance),
      handlers_{.perform =
                    [this](PanelAction action) {
                      model_.perform(action);
                      refresh();
                    },
                .setStartAtLogin =
                    [this](bool on) {
                      model_.setStartAtLogin(on);
                      // What the switch shows now is the user's wish; what is stands in the desktop's list.
                      forget(PanelBlock::Kind::options);
                      refresh();
                    }},
      changed_(std::move(changed)),
      layout_(new QVBoxLayout(this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(0);
  applyLook();
}

void PanelView::applyLook() {
  // Taken off first, for it would put back the palette that it has found.
  setStyleSheet({});
  setPalette(look_.palette());
  setStyleSheet(look_.styleSheet());
  setFixedWidth(look_.length(widthPoints));
}

void PanelView::restyle() {
  look_ = PanelLook(appearance_);
  applyLook();
  retireShown();
  refresh();
}

void PanelView::refresh() {
  const PanelContent content = model_.content();
  const bool isShown = std::ranges::equal(content, shown_, {}, {}, &Shown::block);
  if (!isShown) showContent(content);
}

void PanelView::showContent(const PanelContent& content) {
  const QWidget* focused = focusWidget();
  const QString focusName = focused == nullptr ? QString() : focused->objectName();
  std::vector<Shown> next;
  for (const PanelBlock& block : content) next.push_back({block, widgetFor(block)});
  retireShown();
  shown_ = std::move(next);
  arrange();
  if (!focusName.isEmpty()) focusControl(focusName);
  changed_();
}

void PanelView::focusControl(const QString& name) {
  const auto controls = findChildren<QWidget*>(name);
  // The one that has been replaced is still there, in a hidden block.
  const auto found = std::ranges::find_if(controls, [this](QWidget* control) { return control->isVisibleTo(this); });
  if (found != controls.end()) (*found)->setFocus();
}

void PanelView::forget(PanelBlock::Kind kind) {
  const auto found = std::ranges::find(shown_, kind, [](const Shown& shown) { return shown.block.kind; });
  if (found != shown_.end()) found->block.rows.clear();
}

QWidget* PanelView::widgetFor(const PanelBlock& block) {
  const auto found = std::ranges::find(shown_, block, &Shown::block);
  if (found == shown_.end()) return makeWidget(block);
  QWidget* widget = found->widget;
  shown_.erase(found);
  return widget;
}

QWidget* PanelView::makeWidget(const PanelBlock& block) const {
  auto* widget = new QWidget;
  auto* outer = new QVBoxLayout(widget);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSpacing(0);
  if (block.kind != PanelBlock::Kind::header) outer->addWidget(divider(look_.divider()));
  auto* rows = new QVBoxLayout;
  const int side = look_.length(sidePoints);
  const int edge = look_.length(edgePoints);
  rows->setContentsMargins(side, edge, side, edge);
  rows->setSpacing(look_.length(rowGapPoints));
  const PanelRowMaker make(look_, handlers_);
  for (const PanelRow& row : block.rows) {
    QWidget* made = std::visit(make, row);
    if (block.kind == PanelBlock::Kind::pairing) {
      if (auto* label = qobject_cast<QLabel*>(made)) label->setAlignment(Qt::AlignHCenter);
    }
    rows->addWidget(made, 0, std::holds_alternative<PanelQR>(row) ? Qt::AlignHCenter : Qt::Alignment());
  }
  outer->addLayout(rows);
  return widget;
}

void PanelView::retireShown() {
  for (const Shown& shown : std::exchange(shown_, {})) {
    layout_->removeWidget(shown.widget);
    shown.widget->hide();
    // It may be the one whose button has just been pressed.
    shown.widget->deleteLater();
  }
}

void PanelView::arrange() {
  while (QLayoutItem* item = layout_->takeAt(0)) delete item;
  QWidget* last = nullptr;
  for (const Shown& shown : shown_) {
    layout_->addWidget(shown.widget);
    shown.widget->show();
    // Screen readers go by this order.
    shown.widget->raise();
    for (QWidget* control : shown.widget->findChildren<QWidget*>()) {
      if ((control->focusPolicy() & Qt::TabFocus) == 0) continue;
      if (last != nullptr) setTabOrder(last, control);
      last = control;
    }
  }
}

QSize PanelView::wholeSize() const {
  return {width(), layout_->totalHeightForWidth(width())};
}

}  // namespace orvel
