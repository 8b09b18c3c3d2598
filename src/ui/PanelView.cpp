#include "ui/PanelView.hpp"

#include "ui/PanelAccessibility.hpp"
#include "ui/PanelLook.hpp"
#include "ui/PanelModel.hpp"
#include "ui/Widgets.hpp"

#include <QColor>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace orvel {

/// One block of the panel. Only rows that differ are made anew: a button that is just being pressed stays while a phone
/// comes or goes, and so does the keyboard's focus. Threads: the main thread.
class PanelBlockView final : public QWidget {
 public:
  /// Both must outlive it.
  PanelBlockView(PanelBlock::Kind kind, const PanelLook& look, const PanelRowMaker::Handlers& handlers);

  PanelBlock::Kind kind() const { return kind_; }

  /// Whether it shows just these.
  bool shows(const std::vector<PanelRow>& rows) const;

  void showRows(const std::vector<PanelRow>& rows);

  /// What it shows is not to be relied upon: the next rows are all made anew.
  void forget();

  /// What the keyboard can reach, top to bottom.
  std::vector<QWidget*> controls() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Shown {
    PanelRow row;
    QWidget* widget;
  };

  QWidget* widgetFor(const PanelRow& row);
  QWidget* make(const PanelRow& row) const;

  const PanelBlock::Kind kind_;
  const PanelRowMaker make_;
  const QColor divider_;
  std::vector<Shown> shown_;
  std::vector<QWidget*> forgotten_;
  QVBoxLayout* const rows_;
};

namespace {

constexpr double sidePoints = 16;
constexpr double edgePoints = 12;
constexpr double rowGapPoints = 7;
constexpr int dividerHeight = 1;
constexpr double widthPoints = 288;
/// Has room for the QR code, which does not follow the font.
constexpr int leastWidth = 240;

bool isShown(const PanelContent& content, const std::vector<PanelBlockView*>& blocks) {
  return std::ranges::equal(content, blocks, [](const PanelBlock& block, const PanelBlockView* view) {
    return view->kind() == block.kind && view->shows(block.rows);
  });
}

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
