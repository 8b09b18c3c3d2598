#include "platform/linux/SystemTrustCheck.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xtest.h>

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <array>

namespace orvel {
namespace {

struct SettingsProgram {
  const char* desktop;  // as XDG_CURRENT_DESKTOP has it
  const char* program;
  const char* page;
};

constexpr std::array settingsPrograms = {
    SettingsProgram{"GNOME", "gnome-control-center", "universal-access"},
    SettingsProgram{"KDE", "systemsettings", "kcm_access"},
    SettingsProgram{"KDE", "systemsettings5", "kcm_access"},
    SettingsProgram{"MATE", "mate-at-properties", ""},
    SettingsProgram{"X-Cinnamon", "cinnamon-settings", "universal-access"},
    SettingsProgram{"XFCE", "xfce4-accessibility-settings", ""},
};

bool start(const SettingsProgram& settings) {
  const QString program = QStandardPaths::findExecutable(QString::fromLatin1(settings.program));
  if (program.isEmpty()) return false;
  const QString page = QString::fromLatin1(settings.page);
  return QProcess::startDetached(program, page.isEmpty() ? QStringList() : QStringList(page));
}

}  // namespace

SystemTrustCheck::SystemTrustCheck(X11Connection& connection) : connection_(connection) {}

bool SystemTrustCheck::isTrusted() {
  // What the server said at first holds for as long as the connection; to ask again would be to wait for a server that
  // may hang.
  return connection_.isAlive() && connection_.extension(xcb_test_id) != nullptr;
}

std::string SystemTrustCheck::advice() const {
  return "On Linux there is nothing to tick: the X server must offer its XTEST extension. Switch that on in the "
         "server's "
         "configuration, then log in again.";
}

bool SystemTrustCheck::prompt() {
  return false;
}

bool SystemTrustCheck::openSettings() {
  const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'));
  for (const QString& desktop : desktops) {
    for (const SettingsProgram& settings : settingsPrograms) {
      if (desktop.compare(QLatin1String(settings.desktop), Qt::CaseInsensitive) == 0 && start(settings)) return true;
    }
  }
  return false;
}

}  // namespace orvel
