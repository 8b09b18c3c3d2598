#pragma once

#include "ui/Appearance.hpp"
#include "ui/Foreground.hpp"
#include "ui/PressWatch.hpp"
#include "ui/StatusItem.hpp"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// A tray icon that a test clicks.
class FakeStatusItem final : public StatusItem {
 public:
  void show(Symbol symbol, Handlers handlers) override {
    symbols.push_back(symbol);
    click = std::move(handlers.activated);
    decide = [this, decided = std::move(handlers.decided)] { decided(hasTray); };
  }
  void setSymbol(Symbol symbol) override { symbols.push_back(symbol); }
  bool isShown() const override { return hasTray; }
  std::optional<Rect> place() const override { return where; }

  bool hasTray = true;
  std::optional<Rect> where = Rect{{700, 0}, {24, 24}};
  std::vector<Symbol> symbols;
  std::function<void()> click;
  std::function<void()> decide;
};

/// A desktop whose look a test changes.
class FakeAppearance final : public Appearance {
 public:
  std::optional<bool> isDark() const override { return dark; }
  std::optional<DesktopFont> font() const override { return chosenFont; }
  void observe(std::function<void()> handler) override { changed = std::move(handler); }

  std::optional<bool> dark = false;
  std::optional<DesktopFont> chosenFont;
  std::function<void()> changed;
};

/// Records which windows came to the front by which token.
class FakeForeground final : public Foreground {
 public:
  void becomeAccessory() override {
    if (whenAccessory) whenAccessory();
    ++becameAccessory;
  }
  void keepOutOfList(const ToolkitWindow&) override { ++keptOut; }
  void bring(const ToolkitWindow&, const std::string& token) override { brought.push_back(token); }
  Seconds settlingTime() const override { return settles; }
  void finishStart(const std::string& token) override { finished.push_back(token); }

  Seconds settles{0};
  int becameAccessory = 0;
  std::function<void()> whenAccessory;
  int keptOut = 0;
  std::vector<std::string> brought;
  std::vector<std::string> finished;
};

/// Reports presses when a test says so.
class FakePressWatch final : public PressWatch {
 public:
  void begin(std::function<void()> handler) override { pressed = std::move(handler); }
  void end() override { pressed = {}; }

  std::function<void()> pressed;
};

}  // namespace orvel
