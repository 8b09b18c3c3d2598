#pragma once

#include <QWidget>
#include <functional>

class QPainter;
class QRectF;

namespace orvel {

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

}  // namespace orvel
