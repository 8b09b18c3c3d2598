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
class PanelBlockView;
class PanelModel;

/// Shows what the panel's model says, and passes on what is pressed. Threads: the main thread.
class PanelView final : public QWidget {
 public:
  /// Called when it shows something else and may need another size, with the block that has just been opened, if any.
  using Changed = std::function<void(QWidget* opened)>;

  /// All must outlive it.
  PanelView(PanelModel& model, const Appearance& appearance, Changed changed);

  /// Shows what the model says now.
  void refresh();

  /// Shows it in the look that the desktop has now.
  void restyle();

  /// Makes itself as wide as it is meant to be, but not wider than `mostWidth`, and as high as it takes to show
  /// everything; in the toolkit's units.
  void fit(int mostWidth);

 private:
  void showContent(const PanelContent& content);
  PanelBlockView* shownBlock(PanelBlock::Kind kind) const;
  PanelBlockView* viewFor(PanelBlock::Kind kind);
  void retire(const std::vector<PanelBlockView*>& blocks);
  void arrange();
  std::vector<PanelBlockView*> readingOrder() const;
  void focusControl(const QString& name) const;
  void applyLook();

  PanelModel& model_;
  const Appearance& appearance_;
  PanelLook look_;
  const PanelRowMaker::Handlers handlers_;
  const Changed changed_;
  std::vector<PanelBlockView*> blocks_;
  QVBoxLayout* const layout_;
};

}  // namespace orvel
