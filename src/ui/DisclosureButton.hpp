#pragma once

#include <QPushButton>

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

}  // namespace orvel
