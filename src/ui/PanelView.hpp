#pragma once

#include "ui/PanelContent.hpp"
#include "ui/PanelLook.hpp"
#include "ui/PanelRowMaker.hpp"

#include <QWidget>
#include <functional>
#include <vector>

class QVBoxLayout;

namespace orvel {

class Appearance;
class PanelModel;

/// Shows what the panel's model says, and tells it what is pressed. Only blocks that differ are made anew, so the
/// keyboard's focus and what a screen reader knows stay. Threads: the main thread.
class PanelView final : public QWidget {
 public:
  /// `changed` is called when it shows something else and may need another size. All must outlive it.
  PanelView(PanelModel& model, const Appearance& appearance, std::function<void()> changed);

  /// Shows what the model says now.
  void refresh();

  /// Shows it in the look that the desktop has now.
  void restyle();

  /// What it takes to show everything, in the toolkit's units.
  QSize wholeSize() const;

 private:
  struct Shown {
    PanelBlock block;
    QWidget* widget;
  };

  void showContent(const PanelContent& content);
  void forget(PanelBlock::Kind kind);
  QWidget* widgetFor(const PanelBlock& block);
  QWidget* makeWidget(const PanelBlock& block) const;
  void retireShown();
  void arrange();
  void focusControl(const QString& name);
  void applyLook();

  PanelModel& model_;
  const Appearance& appearance_;
  PanelLook look_;
  const PanelRowMaker::Handlers handlers_;
  const std::function<void()> changed_;
  std::vector<Shown> shown_;
  QVBoxLayout* const layout_;
};

}  // namespace orvel
