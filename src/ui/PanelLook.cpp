#include "ui/PanelLook.hpp"

#include "ui/Appearance.hpp"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace orvel {
namespace {

constexpr double pointsOfDesktopFont = 13;
constexpr double pointsPerInch = 72;
constexpr int middleLightness = 128;

struct FontShape {
  double points;
  QFont::Weight weight;
};

FontShape shapeOf(PanelFont font) {
  switch (font) {
    case PanelFont::title:
      return {13, QFont::DemiBold};
    case PanelFont::heading:
      return {12, QFont::DemiBold};
    case PanelFont::body:
    case PanelFont::monospaced:
      return {12, QFont::Normal};
    case PanelFont::small:
      return {11, QFont::Normal};
    case PanelFont::label:
      return {11, QFont::Medium};
  }
  return {pointsOfDesktopFont, QFont::Normal};
}

bool looksDark(const Appearance& appearance) {
  if (const auto isDark = appearance.isDark()) return *isDark;
  return QGuiApplication::palette().color(QPalette::Window).lightness() < middleLightness;
}

QFont desktopFont(const Appearance& appearance) {
  const auto font = appearance.font();
  if (!font) return QGuiApplication::font();
  QFont chosen(QString::fromStdString(font->family));
  chosen.setPointSizeF(font->size);
  return chosen;
}

/// Not rounded to whole pixels, unless the desktop itself counts in them.
double pointSize(const QFont& font) {
  return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

}  // namespace

PanelLook::PanelLook(const Appearance& appearance)
    : isDark_(looksDark(appearance)),
      base_(desktopFont(appearance)),
      basePoints_(pointSize(base_)),
      unit_(basePoints_ * QGuiApplication::primaryScreen()->logicalDotsPerInchY() / pointsPerInch /
            pointsOfDesktopFont) {}

QFont PanelLook::font(PanelFont font) const {
  const FontShape shape = shapeOf(font);
  QFont result = base_;
  if (font == PanelFont::monospaced) {
    result.setFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
    result.setStyleHint(QFont::Monospace);
    result.setFixedPitch(true);
  }
  result.setWeight(shape.weight);
  result.setPointSizeF(basePoints_ * shape.points / pointsOfDesktopFont);
  return result;
}

QColor PanelLook::color(PanelColor color) const {
  switch (color) {
    case PanelColor::primary:
      break;
    case PanelColor::secondary:
      return isDark_ ? QColor(0xa6, 0xa6, 0xab) : QColor(0x68, 0x68, 0x6d);
    case PanelColor::red:
      return isDark_ ? QColor(0xff, 0x6b, 0x60) : QColor(0xcf, 0x12, 0x1d);
    case PanelColor::orange:
      return isDark_ ? QColor(0xff, 0xa3, 0x2e) : QColor(0xc8, 0x6a, 0x00);
    case PanelColor::green:
      return isDark_ ? QColor(0x36, 0xd0, 0x58) : QColor(0x22, 0x9f, 0x40);
  }
  return isDark_ ? QColor(0xf4, 0xf4, 0xf6) : QColor(0x1d, 0x1d, 0x1f);
}

QColor PanelLook::ground() const {
  return isDark_ ? QColor(0x2a, 0x2a, 0x2d) : QColor(0xf7, 0xf7, 0xf8);
}

QColor PanelLook::divider() const {
  return isDark_ ? QColor(0x42, 0x42, 0x46) : QColor(0xdc, 0xdc, 0xe0);
}

QColor PanelLook::frame() const {
  return isDark_ ? QColor(0x5a, 0x5a, 0x60) : QColor(0xb4, 0xb4, 0xba);
}

QColor PanelLook::outline() const {
  return isDark_ ? QColor(0x8a, 0x8a, 0x90) : QColor(0x86, 0x86, 0x8c);
}

QColor PanelLook::switchOn() const {
  return {0x22, 0x9f, 0x40};
}

QColor PanelLook::accent() const {
  return isDark_ ? QColor(0x5c, 0xaa, 0xff) : QColor(0x0a, 0x60, 0xd0);
}

int PanelLook::length(double points) const {
  return static_cast<int>(std::lround(points * unit_));
}

QPalette PanelLook::palette() const {
  const QColor text = color(PanelColor::primary);
  QPalette palette(isDark_ ? QColor(0x48, 0x48, 0x4d) : QColor(Qt::white), ground());
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) palette.setColor(role, text);
  palette.setColor(QPalette::Base, isDark_ ? QColor(0x38, 0x38, 0x3c) : QColor(Qt::white));
  palette.setColor(QPalette::Window, ground());
  palette.setColor(QPalette::Highlight, accent());
  palette.setColor(QPalette::Link, accent());
  return palette;
}

QString PanelLook::styleSheet() const {
  const auto name = [](const QColor& color) { return color.name(); };
  const QColor button = isDark_ ? QColor(0x38, 0x38, 0x3c) : QColor(0xff, 0xff, 0xff);
  const QColor pressed = isDark_ ? QColor(0x1e, 0x1e, 0x20) : QColor(0xe4, 0xe4, 0xe8);
  return QStringLiteral(
             "QPushButton{outline:none;color:%1;background:%2;border:1px solid %3;border-radius:%4px;padding:%5px %6px}"
             "QPushButton:hover{border-color:%7}QPushButton:pressed{background:%8}"
             "QPushButton:focus{border:2px solid %7;padding:%9px %10px}"
             "QPushButton#link{color:%7;background:transparent;border:none;border-radius:0;border-bottom:2px solid "
             "transparent;padding:2px 0 0 0}"
             "QPushButton#link:hover{text-decoration:underline}"
             "QPushButton#link:focus{border-bottom-color:%7}"
             "QWidget#fields{background:%2;border:1px solid %11;border-radius:%4px}"
             "QLineEdit{color:%1;background:transparent;border:1px solid transparent;border-radius:%5px;"
             "selection-background-color:%7;selection-color:%12}"
             "QLineEdit:focus{border-color:%7}")
      .arg(name(color(PanelColor::primary)), name(button), name(outline()))
      .arg(length(5))
      .arg(length(3))
      .arg(length(10))
      .arg(name(accent()), name(pressed))
      .arg(length(3) - 1)
      .arg(length(10) - 1)
      .arg(name(divider()), name(ground()));
}

QString PanelLook::scrollBarStyleSheet() const {
  return QStringLiteral(
             "QScrollBar{width:%1px;background:transparent}QScrollBar::handle{background:%2;border-radius:%3px;"
             "min-height:%4px}QScrollBar::add-line,QScrollBar::sub-line{height:0}")
      .arg(length(8))
      .arg(outline().name())
      .arg(length(4))
      .arg(length(24));
}

}  // namespace orvel
