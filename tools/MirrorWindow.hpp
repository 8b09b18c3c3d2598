#pragma once

#include <QByteArrayView>
#include <QImage>
#include <QRasterWindow>

namespace orvel::phone {

/// A window with the latest picture of a mirror, as large as it fits. Escape closes it.
///
/// Threads: the one of the toolkit's application.
class MirrorWindow final : public QRasterWindow {
 public:
  MirrorWindow();

  /// Shows a JPEG; one that cannot be read leaves the last picture as it is. The first makes the window as large as
  /// itself and visible.
  void showPicture(QByteArrayView jpeg);

  bool isClosed() const { return isClosed_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QImage picture_;
  bool isClosed_ = false;
};

}  // namespace orvel::phone
