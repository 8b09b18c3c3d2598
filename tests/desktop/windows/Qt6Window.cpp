#include "desktop/windows/WindowSpeech.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCommandLinkButton>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSocketNotifier>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

/// A window of Qt 6 with a text entry alone, or with one widget of each kind.
class Qt6Window final : public QMainWindow {
 public:
  Qt6Window() : notifier_(STDIN_FILENO, QSocketNotifier::Read) {
    setWindowTitle("Qt 6");
    setCentralWidget(new QWidget);
    rows_ = new QVBoxLayout(centralWidget());
    QObject::connect(&notifier_, &QSocketNotifier::activated, this, [this] { obey(); });
  }

  void showEntry() {
    auto* entry = new QLineEdit;
    rows_->addWidget(entry);
    QObject::connect(entry, &QLineEdit::textChanged, this,
                     [](const QString& content) { sayText(content.toStdString()); });
    waitsForKeyboard_ = true;
    resize(400, 60);
    show();
    entry->setFocus();
    activateWindow();
  }

  void showWidgets() {
    addMenuBar();
    addButtons();
    addTabs();
    addOthers();
    show();
    QTimer::singleShot(0, this, [] { say("ready"); });
  }

 protected:
  void changeEvent(QEvent* event) override {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && waitsForKeyboard_) say("ready");
  }

 private:
  void obey() {
    for (const auto& command : commands_.take()) {
      if (command.front() == "places") sayPlaces();
      if (command.front() == "move") move(std::stoi(command[1]), std::stoi(command[2]));
      if (command.front() == "close") close();
    }
    if (commands_.ended) QApplication::quit();
  }

  template <class Widget, class... Arguments>
  Widget* add(const std::string& name, Arguments&&... arguments) {
    auto* widget = new Widget(std::forward<Arguments>(arguments)...);
    rows_->addWidget(widget, 0, Qt::AlignLeft);
    places_[name] = [widget] { return onScreen(*widget, widget->rect()); };
    return widget;
  }

  void addMenuBar() {
    QMenu* menu = menuBar()->addMenu("File");
    QAction* item = menu->addAction("Open something by its name");
    QAction* checkItem = menu->addAction("Show hidden");
    checkItem->setCheckable(true);
    places_["menu"] = [this, menu] { return onScreen(*menuBar(), menuBar()->actionGeometry(menu->menuAction())); };
    places_["item"] = [menu, item] { return onScreen(*menu, menu->actionGeometry(item)); };
    places_["check-item"] = [menu, checkItem] { return onScreen(*menu, menu->actionGeometry(checkItem)); };
  }

  void addButtons() {
    add<QPushButton>("button", "Button");
    add<QPushButton>("wide", "A wide button")->setMinimumWidth(300);
    add<QPushButton>("toggle", "Toggle")->setCheckable(true);
    add<QCheckBox>("check", "Check");
    add<QRadioButton>("radio", "Radio");
    add<QCommandLinkButton>("link", "Link");
    auto* combo = add<QComboBox>("combo");
    combo->addItems({"first choice", "second choice"});
    add<QSpinBox>("spin");
    add<QToolButton>("tool")->setText("Tool");
  }

  void addTabs() {
    auto* tabs = new QTabWidget;
    auto* page = new QLabel("page");
    tabs->addTab(page, "First tab");
    places_["page"] = [page] { return onScreen(*page, page->rect()); };
    tabs->addTab(new QLabel("page"), "Second tab");
    tabs->setMaximumHeight(70);
    rows_->addWidget(tabs);
    places_["tab"] = [tabs] { return onScreen(*tabs->tabBar(), tabs->tabBar()->tabRect(1)); };
  }

  void addOthers() {
    add<QLineEdit>("entry");
    add<QSlider>("slider", Qt::Horizontal);
    add<QLabel>("label", "Label");
    auto* image = add<QLabel>("image");
    QPixmap picture(48, 48);
    picture.fill(Qt::red);
    image->setPixmap(picture);
    auto* list = new QListWidget;
    list->addItem("Row");
    list->setMaximumHeight(40);
    rows_->addWidget(list);
    places_["row"] = [list] { return onScreen(*list->viewport(), list->visualItemRect(list->item(0))); };
  }

  void sayPlaces() const {
    for (const auto& [name, place] : places_) {
      if (const Place seen = place(); seen.width > 0) sayPlace(name, seen);
    }
    say("places said");
  }

  /// Empty when it is not seen.
  static Place onScreen(const QWidget& widget, const QRect& part) {
    if (!widget.isVisible()) return {};
    const QPoint origin = widget.mapToGlobal(part.topLeft());
    return {double(origin.x()), double(origin.y()), double(part.width()), double(part.height())};
  }

  QSocketNotifier notifier_;
  QVBoxLayout* rows_ = nullptr;
  std::map<std::string, std::function<Place()>> places_;
  WindowCommands commands_;
  bool waitsForKeyboard_ = false;
};

}  // namespace
}  // namespace orvel

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  orvel::Qt6Window window;
  if (argc > 1 && std::string_view(argv[1]) == "--entry") {
    window.showEntry();
  } else {
    window.showWidgets();
  }
  return QApplication::exec();
}
