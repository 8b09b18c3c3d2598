#include <QApplication>
#include <QColor>
#include <QIcon>
#include <QLabel>
#include <QPixmap>
#include <QSystemTrayIcon>

// What the toolkit alone needs for an icon in the tray, a click on which opens and closes a small window.
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStringLiteral("fusion"));
  QPixmap red(24, 24);
  red.fill(Qt::red);
  QSystemTrayIcon icon((QIcon(red)));
  QLabel window(QStringLiteral("Hello"), nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
  window.setGeometry(900, 400, 300, 250);
  QObject::connect(&icon, &QSystemTrayIcon::activated, &window, [&window] { window.setVisible(!window.isVisible()); });
  icon.show();
  return QApplication::exec();
}
