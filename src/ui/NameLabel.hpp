#pragma once

#include <QLabel>
#include <QString>

namespace orvel {

/// A name that others have chosen, on one line: cut off where there is no room for it, and then whole in its tip.
/// Threads: the main thread.
class NameLabel final : public QLabel {
 public:
  explicit NameLabel(const QString& name);

  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvel
