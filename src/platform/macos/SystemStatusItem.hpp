#pragma once

#include "ui/StatusItem.hpp"

#include <memory>

namespace orvel {

/// An item at the right of the menu bar, which there is on every Mac. It acts when a button is pressed, as its
/// neighbours do, so that the press which takes the keyboard from the panel and the one that counts are the same.
/// Threads: the main thread.
class SystemStatusItem final : public StatusItem {
 public:
  SystemStatusItem();
  ~SystemStatusItem() override;
  SystemStatusItem(const SystemStatusItem&) = delete;
  SystemStatusItem& operator=(const SystemStatusItem&) = delete;

  void show(Symbol symbol, Handlers handlers) override;
  void setSymbol(Symbol symbol) override;
  bool isShown() const override;
  std::optional<Rect> place() const override;

 private:
  struct Shown;

  std::unique_ptr<Shown> shown_;
};

}  // namespace orvel
