#pragma once

#include <QString>
#include <QWidget>

namespace orvel {

/// Has screen readers say what happens in the window that it belongs to. Nobody sees it. Threads: the main thread.
class Announcer final : public QWidget {
 public:
  explicit Announcer(QWidget* parent);

  /// Does nothing for an empty text.
  void announce(const QString& text);
};

}  // namespace orvel
