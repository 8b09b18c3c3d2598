#pragma once

#include <QIcon>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace orvel {

class EmbeddingTray;

/// An icon in a window that a tray takes into its own, by the older of the trays' protocols. The
/// toolkit has such a thing, but newer releases of it use the message bus alone as soon as somebody there looks after
/// items, also when nobody shows them.
///
/// Threads: the main thread.
class EmbeddedIcon final : public QWidget {
 public:
  /// Asks the tray that there is now to take it, which it leaves only by going. `clicked` is called for every press of
  /// a button on it, twice for a double click.
  EmbeddedIcon(const EmbeddingTray& tray, QIcon icon, std::function<void()> clicked);

  /// The ownership of the tray that was asked.
  std::uint32_t tray() const { return tray_; }

  void setIcon(QIcon icon);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  void cutOut();

  const std::uint32_t tray_;
  QIcon icon_;
  const std::function<void()> clicked_;
};

}  // namespace orvel
