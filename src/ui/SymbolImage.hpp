#pragma once

#include "ui/Symbol.hpp"

#include <QImage>

class QColor;

namespace orvel::SymbolImage {

/// The symbol as it was drawn, `side` pixels wide and high. Those of the icon are white within a dark outline, so that
/// they show on every ground. Threads: any.
QImage plain(Symbol symbol, int side);

/// The symbol's shape in one colour.
QImage tinted(Symbol symbol, int side, const QColor& color);

}  // namespace orvel::SymbolImage
