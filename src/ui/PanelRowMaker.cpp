#include "ui/PanelRowMaker.hpp"

#include "ui/PanelAccessibility.hpp"
#include "ui/SymbolImage.hpp"
#include "ui/Widgets.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <cmath>

namespace orvel {
namespace {

constexpr double circlePoints = 8;
constexpr double symbolPoints = 14;
constexpr double symbolGapPoints = 6;
constexpr double fieldSidePoints = 10;
constexpr double fieldEdgePoints = 5;

void setTextColor(QWidget* widget, const QColor& color) {
  QPalette palette = widget->palette();
  palette.setColor(QPalette::WindowText, color);
  widget->setPalette(palette);
}

template <class Layout>
Layout* tightLayout(QWidget* row, int spacing) {
  auto* layout = new Layout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(spacing);
  return layout;
}

/// By which a control is found again when its row has been made anew.
QString nameOf(PanelAction action) {
  switch (action) {
    case PanelAction::openAccessibilitySettings:
      return QStringLiteral("settings");
    case PanelAction::toggleCode:
      return QStringLiteral("link");
    case PanelAction::restart:
      return QStringLiteral("restart");
    case PanelAction::newCode:
      return QStringLiteral("newCode");
    case PanelAction::quit:
      return QStringLiteral("quit");
  }
  return {};
}

}  // namespace

QWidget* PanelRowMaker::operator()(const PanelStatus& status) const {
  auto* row = new QWidget;
  auto* layout = tightLayout<QHBoxLayout>(row, look_.length(10));
  layout->addWidget(new Drawing(look_.length(circlePoints),
                                [color = look_.color(status.circle)](QPainter& painter, const QRectF& square) {
                                  painter.setPen(Qt::NoPen);
                                  painter.setBrush(color);
                                  painter.drawEllipse(square);
                                }));
  auto* texts = new QVBoxLayout;
  texts->setSpacing(look_.length(1));
  texts->addWidget(plainText({.text = status.title, .font = PanelFont::title}));
  texts->addWidget(plainText({.text = status.text, .font = PanelFont::small, .color = PanelColor::secondary}));
  layout->addLayout(texts, 1);
  return row;
}

QWidget* PanelRowMaker::operator()(const PanelText& text) const {
  if (!text.symbol) return plainText(text);
  auto* row = new QWidget;
  auto* layout = tightLayout<QHBoxLayout>(row, look_.length(symbolGapPoints));
  layout->addWidget(symbol(*text.symbol));
  layout->addWidget(plainText(text), 1);
  return row;
}

QWidget* PanelRowMaker::plainText(const PanelText& text) const {
  const QString string = QString::fromStdString(text.text);
  QLabel* label = text.isName ? new NameLabel(string, QStringLiteral("Connected phone")) : new QLabel;
  if (!text.isName) {
    label->setTextFormat(Qt::PlainText);
    label->setText(string);
    label->setWordWrap(true);
  }
  label->setFont(look_.font(text.font));
  setTextColor(label, look_.color(text.color));
  return label;
}

QWidget* PanelRowMaker::symbol(const PanelSymbol& symbol) const {
  return new Drawing(
      look_.length(symbolPoints), [symbol, color = look_.color(symbol.color)](QPainter& painter, const QRectF& square) {
        const double scale = painter.device()->devicePixelRatioF();
        painter.drawImage(
            square, SymbolImage::tinted(symbol.symbol, static_cast<int>(std::ceil(square.width() * scale)), color));
      });
}

QWidget* PanelRowMaker::operator()(const PanelQR& code) const {
  return new QRView(code.image, code.shownSide);
}

QWidget* PanelRowMaker::operator()(const PanelFields& row) const {
  auto* box = new QWidget;
  box->setObjectName(QStringLiteral("fields"));
  box->setAttribute(Qt::WA_StyledBackground);
  auto* layout = tightLayout<QVBoxLayout>(box, 0);
  const int side = look_.length(fieldSidePoints);
  const int edge = look_.length(fieldEdgePoints);
  layout->setContentsMargins(side, edge, side, edge);
  for (const PanelField& field : row.fields) {
    auto* text = new CopyableText(QString::fromStdString(field.text), look_.font(PanelFont::monospaced));
    text->setObjectName(QString::fromStdString(field.name));
    text->setAccessibleName(text->objectName());
    layout->addWidget(text);
  }
  return box;
}

QWidget* PanelRowMaker::operator()(const PanelLabel& label) const {
  auto* row = new QWidget;
  auto* layout = tightLayout<QHBoxLayout>(row, look_.length(symbolGapPoints));
  layout->addWidget(plainText({.text = label.text, .font = PanelFont::label, .color = PanelColor::secondary}), 1);
  auto* link = new DisclosureButton(label.isExpanded);
  prepare(link, label.link);
  link->setCursor(Qt::PointingHandCursor);
  layout->addWidget(link);
  return row;
}

QWidget* PanelRowMaker::operator()(const PanelToggle& toggle) const {
  auto* box = new ToggleSwitch(QString::fromStdString(toggle.text), {.text = look_.color(PanelColor::primary),
                                                                     .on = look_.switchOn(),
                                                                     .off = look_.outline(),
                                                                     .focus = look_.accent()});
  box->setObjectName(QStringLiteral("startAtLogin"));
  box->setFont(look_.font(PanelFont::body));
  box->setChecked(toggle.isOn);
  box->setFocusPolicy(Qt::TabFocus);
  QObject::connect(box, &ToggleSwitch::toggled, box,
                   [&handlers = handlers_](bool on) { handlers.setStartAtLogin(on); });
  return box;
}

QWidget* PanelRowMaker::operator()(const PanelButtons& row) const {
  auto* widget = new QWidget;
  auto* layout = tightLayout<QHBoxLayout>(widget, look_.length(6));
  for (const PanelButton& one : row.buttons) {
    auto* made = new QPushButton;
    prepare(made, one);
    made->setFont(look_.font(row.areSmall ? PanelFont::small : PanelFont::body));
    layout->addWidget(made);
  }
  layout->addStretch(1);
  return widget;
}

void PanelRowMaker::prepare(QPushButton* made, const PanelButton& button) const {
  made->setText(QString::fromStdString(button.text));
  made->setObjectName(nameOf(button.action));
  made->setFont(look_.font(PanelFont::small));
  made->setAutoDefault(true);
  // A click needs no mark of where the keyboard is.
  made->setFocusPolicy(Qt::TabFocus);
  QObject::connect(made, &QPushButton::clicked, made,
                   [&handlers = handlers_, action = button.action] { handlers.perform(action); });
}

}  // namespace orvel
