#pragma once

#include "ui/PanelContent.hpp"
#include "ui/PanelRowMaker.hpp"

#include <QColor>
#include <QWidget>
#include <vector>

class QVBoxLayout;

namespace orvel {

/// One block of the panel. Only rows that differ are made anew: a button that is just being pressed stays while a phone
/// comes or goes, and so does the keyboard's focus. Threads: the main thread.
class PanelBlockView final : public QWidget {
 public:
  /// Both must outlive it.
  PanelBlockView(PanelBlock::Kind kind, const PanelLook& look, const PanelRowMaker::Handlers& handlers);

  PanelBlock::Kind kind() const { return kind_; }

  /// Whether it shows just these.
  bool shows(const std::vector<PanelRow>& rows) const;

  void showRows(const std::vector<PanelRow>& rows);

  /// What it shows is not to be relied upon: the next rows are all made anew.
  void forget();

  /// What the keyboard can reach, top to bottom.
  std::vector<QWidget*> controls() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Shown {
    PanelRow row;
    QWidget* widget;
  };

  QWidget* widgetFor(const PanelRow& row);
  QWidget* make(const PanelRow& row) const;

  const PanelBlock::Kind kind_;
  const PanelRowMaker make_;
  const QColor divider_;
  std::vector<Shown> shown_;
  std::vector<QWidget*> forgotten_;
  QVBoxLayout* const rows_;
};

}  // namespace orvel
