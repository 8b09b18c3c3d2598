#pragma once

#include <QCheckBox>
#include <QColor>
#include <QString>

namespace orvel {

/// A check box that looks like a switch at the end of its row, `markRoom` before its right edge. Threads: the main
/// thread.
class ToggleSwitch final : public QCheckBox {
 public:
  /// Around the switch, for the mark of the keyboard's focus.
  static constexpr int markRoom = 2;

  struct Colors {
    QColor text;
    QColor on;
    QColor off;
    QColor focus;
  };

  ToggleSwitch(const QString& text, const Colors& colors);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool hitButton(const QPoint& place) const override;

 private:
  QRectF track() const;

  const Colors colors_;
};

}  // namespace orvel
