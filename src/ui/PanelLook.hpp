#pragma once

#include "ui/PanelContent.hpp"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

namespace orvel {

class Appearance;

/// Colours, fonts and lengths of the panel, as they follow from the desktop's. The desktop's own font stands for 13
/// points, and all lengths follow it but the side of the QR code. Threads: the main thread.
class PanelLook {
 public:
  explicit PanelLook(const Appearance& appearance);

  QFont font(PanelFont font) const;
  QColor color(PanelColor color) const;
  QColor ground() const;
  QColor divider() const;
  QColor frame() const;

  /// Of what can be pressed: at least three times as light or as dark as what is beside it.
  QColor outline() const;
  QColor switchOn() const;

  QColor accent() const;

  /// So many points, in the toolkit's units.
  int length(double points) const;

  QPalette palette() const;
  QString styleSheet() const;
  QString scrollBarStyleSheet() const;

 private:
  bool isDark_;
  QFont base_;
  double basePoints_;
  double unit_;  // the toolkit's units in a point
};

}  // namespace orvel
