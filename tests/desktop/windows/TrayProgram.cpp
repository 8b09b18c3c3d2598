#include "desktop/windows/WindowSpeech.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QVBoxLayout>
#include <QWidget>
#include <string>

// A red icon in the tray, each click on which is reported, and a small window that hears the clicks on its button.
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QPixmap red(32, 32);
  red.fill(Qt::red);
  QSystemTrayIcon icon((QIcon(red)));
  QObject::connect(&icon, &QSystemTrayIcon::activated, &application, [](QSystemTrayIcon::ActivationReason reason) {
    orvel::say("activated " + std::to_string(static_cast<int>(reason)));
  });
  icon.show();

  QWidget window;
  QVBoxLayout rows(&window);
  auto* button = new QPushButton("Press me");
  auto* box = new QCheckBox("Tick me");
  auto* hidden = new QLabel("Not shown");
  rows.addWidget(new QLabel("A label"));
  rows.addWidget(new QLineEdit("content"));
  rows.addWidget(button);
  rows.addWidget(box);
  rows.addWidget(hidden);
  hidden->hide();
  button->setFocus();
  QObject::connect(button, &QPushButton::clicked, &window, [] { orvel::say("pressed"); });
  QObject::connect(box, &QCheckBox::toggled, &window, [](bool isOn) { orvel::say(isOn ? "ticked" : "unticked"); });
  window.show();
  window.activateWindow();
  orvel::say("ready");
  return QApplication::exec();
}
