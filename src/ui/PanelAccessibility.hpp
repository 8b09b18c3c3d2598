#pragma once

#include <QPushButton>
#include <QString>

class QWidget;

namespace orvel {

/// A button that shows or hides something, and lets screen readers know which of both it has done. Threads: the main
/// thread.
class DisclosureButton final : public QPushButton {
 public:
  explicit DisclosureButton(bool isExpanded) : isExpanded_(isExpanded) {}

  bool isExpanded() const { return isExpanded_; }

 private:
  const bool isExpanded_;
};

/// What screen readers know of the panel beyond what the toolkit itself lets them know. Threads: the main thread.
namespace PanelAccessibility {

/// Describes the panel's own widgets to screen readers: the QR code as an image, the link to it as expanded or
/// collapsed. Once is enough, more does no harm.
void install();

/// Has screen readers say what has happened in `window`, which is shown, though nothing is seen of it.
void announce(QWidget* window, const QString& text);

}  // namespace PanelAccessibility
}  // namespace orvel
