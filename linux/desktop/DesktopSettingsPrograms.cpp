#include "linux/desktop/DesktopSettingsPrograms.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

#include <utility>

namespace lb {

bool DesktopSettingsPrograms::openBluetoothSettings() {
  const std::pair<const char*, QStringList> candidates[] = {
      {"gnome-control-center", {"bluetooth"}},
      {"systemsettings", {"kcm_bluetooth"}},
      {"blueman-manager", {}},
      {"blueberry", {}},
  };
  for (const auto& [program, arguments] : candidates) {
    const auto path = QStandardPaths::findExecutable(program);
    if (!path.isEmpty() && QProcess::startDetached(path, arguments)) return true;
  }
  return false;
}

bool DesktopSettingsPrograms::warnsOfLowBattery() const {
  const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
  return desktops.contains("GNOME", Qt::CaseInsensitive) || desktops.contains("KDE", Qt::CaseInsensitive);
}

} // namespace lb
