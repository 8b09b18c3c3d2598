#pragma once

#include <QString>
#include <QWidget>

namespace orvel {

/// What screen readers say because it has happened, though nobody sees it. It goes by itself. Threads: the main thread.
class Announcement final : public QWidget {
 public:
  /// Has it said as something that happens in `window`, which is shown.
  static void make(QWidget* window, const QString& text);

 private:
  Announcement(QWidget* window, const QString& text);
};

}  // namespace orvel
