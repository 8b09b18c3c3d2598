#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

namespace orvel {

struct QRImage;

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
