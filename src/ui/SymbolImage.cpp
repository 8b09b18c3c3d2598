#include "ui/SymbolImage.hpp"

#include <QColor>
#include <QLatin1String>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <QtGlobal>

// The macro must stand outside of all namespaces.
static void keepSymbolsLinked() {
  Q_INIT_RESOURCE(symbols);
}

namespace orvel::SymbolImage {

QImage plain(Symbol symbol, int side) {
  keepSymbolsLinked();
  const std::string_view name = systemName(symbol);
  QSvgRenderer drawing(QLatin1String(":/symbols/") + QLatin1String(name.data(), static_cast<qsizetype>(name.size())) +
                       QLatin1String(".svg"));
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawing.render(&painter);
  return image;
}

QImage tinted(Symbol symbol, int side, const QColor& color) {
  QImage image = plain(symbol, side);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
  return image;
}

}  // namespace orvel::SymbolImage
