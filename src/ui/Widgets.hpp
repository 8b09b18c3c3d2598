#pragma once

#include <QCheckBox>
#include <QColor>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <QWidget>
#include <functional>

class QPainter;
class QRectF;

namespace orvel {

struct QRImage;

/// A small square picture that is painted anew for whatever screen it is on. Threads: the main thread.
class Drawing final : public QWidget {
 public:
  using Paint = std::function<void(QPainter& painter, const QRectF& square)>;

  /// `side` is in the toolkit's units.
  Drawing(int side, Paint paint);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Paint paint_;
};

/// A name that others have chosen, on one line: cut off where there is no room for it, and then whole in its tip.
/// Threads: the main thread.
class NameLabel final : public QLabel {
 public:
  /// `description` is what screen readers say of whose name it is.
  NameLabel(const QString& name, const QString& description);

  /// On one line and of a length that can be read, without what has no shape.
  static QString readable(const QString& name);

  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A text on one line that can be selected and copied by the mouse and by the keyboard, as wide as it is. Threads: the
/// main thread.
class CopyableText final : public QLineEdit {
 public:
  CopyableText(const QString& text, const QFont& font);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
};

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

/// Shows a QR code on a white rounded ground that is wide enough for scanners, in whatever colours the rest is.
/// Threads: the main thread.
class QRView final : public QWidget {
 public:
  /// `side` is the code's own, without the ground, in the toolkit's units.
  QRView(const QRImage& code, double side);

  /// By which it is found among other widgets.
  static QString name() { return QStringLiteral("qrCode"); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage modules_;  // a pixel each
  double side_;
  double margin_;
};

}  // namespace orvel
