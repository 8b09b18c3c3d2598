#include "ui/PanelView.hpp"

#include "ui/NameLabel.hpp"
#include "ui/PanelAccessibility.hpp"
#include "ui/PanelBlockView.hpp"
#include "ui/PanelModel.hpp"

#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace orvel {
namespace {

constexpr double widthPoints = 288;
/// Has room for the QR code, which does not follow the font.
constexpr int leastWidth = 240;

bool isShown(const PanelContent& content, const std::vector<PanelBlockView*>& blocks) {
  return std::ranges::equal(content, blocks, [](const PanelBlock& block, const PanelBlockView* view) {
    return view->kind() == block.kind && view->shows(block.rows);
  });
}

}  // namespace

PanelView::PanelView(PanelModel& model, const Appearance& appearance, Changed changed)
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
                      for (PanelBlockView* block : blocks_) {
                        if (block->kind() == PanelBlock::Kind::options) block->forget();
                      }
                      refresh();
                    }},
      changed_(std::move(changed)),
      layout_(new QVBoxLayout(this)) {
  PanelAccessibility::install();
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(0);
  applyLook();
}

void PanelView::applyLook() {
  // Taken off first, for it would put back the palette that it has found.
  setStyleSheet({});
  setPalette(look_.palette());
  setStyleSheet(look_.styleSheet());
}

void PanelView::restyle() {
  look_ = PanelLook(appearance_);
  applyLook();
  retire(std::exchange(blocks_, {}));
  refresh();
}

void PanelView::refresh() {
  const std::vector<std::string> news = model_.takeNews();
  const PanelContent content = model_.content();
  if (!isShown(content, blocks_)) showContent(content);
  for (const std::string& one : news) {
    PanelAccessibility::announce(this, NameLabel::readable(QString::fromStdString(one)));
  }
}

void PanelView::showContent(const PanelContent& content) {
  const PanelBlockView* const openBefore = shownBlock(PanelBlock::Kind::pairing);
  const QWidget* focused = focusWidget();
  const QString focusName = focused == nullptr ? QString() : focused->objectName();
  std::vector<PanelBlockView*> next;
  for (const PanelBlock& block : content) {
    next.push_back(viewFor(block.kind));
    std::erase(blocks_, next.back());
    if (!next.back()->shows(block.rows)) next.back()->showRows(block.rows);
  }
  retire(std::exchange(blocks_, std::move(next)));
  arrange();
  if (!focusName.isEmpty()) focusControl(focusName);
  PanelBlockView* const open = shownBlock(PanelBlock::Kind::pairing);
  changed_(openBefore == nullptr ? open : nullptr);
}

PanelBlockView* PanelView::shownBlock(PanelBlock::Kind kind) const {
  const auto found = std::ranges::find(blocks_, kind, &PanelBlockView::kind);
  return found == blocks_.end() ? nullptr : *found;
}

PanelBlockView* PanelView::viewFor(PanelBlock::Kind kind) {
  PanelBlockView* const shown = shownBlock(kind);
  return shown == nullptr ? new PanelBlockView(kind, look_, handlers_) : shown;
}

void PanelView::retire(const std::vector<PanelBlockView*>& blocks) {
  for (PanelBlockView* block : blocks) {
    layout_->removeWidget(block);
    block->hide();
    // It may be the one whose button has just been pressed.
    block->deleteLater();
  }
}

void PanelView::arrange() {
  while (QLayoutItem* item = layout_->takeAt(0)) delete item;
  QWidget* last = nullptr;
  for (PanelBlockView* block : blocks_) {
    layout_->addWidget(block);
    block->show();
  }
  for (PanelBlockView* block : readingOrder()) {
    // Screen readers go by this order.
    block->raise();
    for (QWidget* control : block->controls()) {
      if (last != nullptr) setTabOrder(last, control);
      last = control;
    }
  }
}

/// What a link opens follows it for the keyboard and for screen readers, though the eye finds it above.
std::vector<PanelBlockView*> PanelView::readingOrder() const {
  std::vector<PanelBlockView*> order = blocks_;
  const auto pairing = std::ranges::find(order, PanelBlock::Kind::pairing, &PanelBlockView::kind);
  const auto connections = std::ranges::find(order, PanelBlock::Kind::connections, &PanelBlockView::kind);
  if (pairing < connections && connections != order.end()) std::rotate(pairing, pairing + 1, connections + 1);
  return order;
}

void PanelView::focusControl(const QString& name) const {
  const auto controls = findChildren<QWidget*>(name);
  // The one that has been replaced is still there, but hidden.
  const auto found = std::ranges::find_if(controls, [this](QWidget* control) { return control->isVisibleTo(this); });
  if (found != controls.end()) (*found)->setFocus();
}

void PanelView::fit(int mostWidth) {
  const int wanted = std::max({look_.length(widthPoints), leastWidth, layout_->minimumSize().width()});
  const int width = std::min(wanted, mostWidth);
  setFixedWidth(width);
  resize(width, layout_->totalHeightForWidth(width));
}

}  // namespace orvel
