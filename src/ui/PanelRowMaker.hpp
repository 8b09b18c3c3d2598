#pragma once

#include "ui/PanelContent.hpp"
#include "ui/PanelLook.hpp"

#include <QtGlobal>
#include <functional>

class QPushButton;
class QWidget;

namespace orvel {

/// Makes the widget of each kind of row. Threads: the main thread.
class PanelRowMaker {
 public:
  struct Handlers {
    std::function<void(PanelAction)> perform;
    std::function<void(bool)> setStartAtLogin;
  };

  PanelRowMaker(const PanelLook& look, const Handlers& handlers) : look_(look), handlers_(handlers) {}

  /// A new widget, which belongs to the caller.
  QWidget* operator()(const PanelStatus& status) const;
  QWidget* operator()(const PanelText& text) const;
  QWidget* operator()(const PanelQR& code) const;
  QWidget* operator()(const PanelFields& row) const;
  QWidget* operator()(const PanelLabel& label) const;
  QWidget* operator()(const PanelToggle& toggle) const;
  QWidget* operator()(const PanelButtons& row) const;

 private:
  QWidget* plainText(const PanelText& text) const;
  QWidget* symbol(const PanelSymbol& symbol) const;
  void prepare(QPushButton* made, const PanelButton& button) const;

  const PanelLook& look_;
  const Handlers& handlers_;
};

}  // namespace orvel
