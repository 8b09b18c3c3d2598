#include "tools/MirrorWindow.hpp"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <utility>

namespace orvel::phone {

MirrorWindow::MirrorWindow() {
  setTitle("orvel-phone");
  resize(900, 506);
}

void MirrorWindow::showPicture(QByteArrayView jpeg) {
  QImage picture = QImage::fromData(jpeg, "JPEG");
  if (picture.isNull()) return;
  const bool isFirst = picture_.isNull();
  picture_ = std::move(picture);
  if (isFirst) {
    resize(picture_.size() / devicePixelRatio());
    setVisible(true);
  }
  update();
}

void MirrorWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QRect window(QPoint(), size());
  QRect place(QPoint(), picture_.size().scaled(window.size(), Qt::KeepAspectRatio));
  place.moveCenter(window.center());
  painter.fillRect(window, Qt::black);
  painter.drawImage(place, picture_);
}

void MirrorWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) close();
}

void MirrorWindow::closeEvent(QCloseEvent*) {
  isClosed_ = true;
}

}  // namespace orvel::phone
