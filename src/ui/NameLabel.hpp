#pragma once

#include <QLabel>
#include <QString>

namespace orvel {

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

}  // namespace orvel
