#include "ui/TrayHost.h"

#include "core/Texts.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QSystemTrayIcon>
#include <QTimer>

#include <chrono>

namespace lb {

namespace {

bool hasWatcher(const QDBusConnection& session) {
  return session.isConnected() && session.interface()->isServiceRegistered(TrayHost::watcherService);
}

bool awaitWatcher(const QDBusConnection& session, Seconds wait) {
  if (!session.isConnected() || wait.count() <= 0) return false;
  QDBusServiceWatcher watcher(TrayHost::watcherService, session, QDBusServiceWatcher::WatchForRegistration);
  QEventLoop loop;
  QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
  QTimer::singleShot(std::chrono::duration_cast<std::chrono::milliseconds>(wait), &loop, &QEventLoop::quit);
  if (hasWatcher(session)) return true; // came between the first look and the watch
  loop.exec();
  return hasWatcher(session);
}

} // namespace

TrayHost::Kind TrayHost::find(const QDBusConnection& session, Seconds wait,
                              const std::function<bool()>& hasXembedTray) {
  if (hasWatcher(session)) return Kind::statusNotifierItem;
  if (!hasXembedTray() && awaitWatcher(session, wait)) return Kind::statusNotifierItem;
  return QSystemTrayIcon::isSystemTrayAvailable() ? Kind::xembed : Kind::none;
}

std::string TrayHost::describe(Kind kind) {
  switch (kind) {
  case Kind::statusNotifierItem: return "StatusNotifierItem over D-Bus";
  case Kind::xembed: return "XEmbed system tray";
  case Kind::none: return "no tray";
  }
  return "no tray";
}

std::string_view TrayHost::missingAdvice(bool hasDisplay) {
  if (!hasDisplay) {
    return translatable("There is no display, so the devices get no tray icons. Lanternbud keeps running: "
                        "lanternbud-ctl lists, connects and disconnects the devices meanwhile.");
  }
  return translatable("The desktop shows no tray, so the devices get no icons. On GNOME, install and enable the "
                      "AppIndicator extension (the Debian package gnome-shell-extension-appindicator), then log in "
                      "again; other desktops need a panel with a system tray. Lanternbud keeps running: "
                      "lanternbud-ctl lists, connects and disconnects the devices meanwhile.");
}

} // namespace lb
