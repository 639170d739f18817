#include "tests/support/XfcePanel.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QStandardPaths>

#include <filesystem>

namespace lb::test {

namespace {

// One panel along the top with the tray plugin alone, dark as Debian's.
constexpr const char* panelSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray"/>
  </property>
</channel>
)";

// Not on the PATH: the session starts it, under the architecture's folder.
QString settingsDaemon() {
  for (const auto& architecture : QDir("/usr/lib").entryList({"*-linux-*"}, QDir::Dirs)) {
    const auto daemon = "/usr/lib/" + architecture + "/xfce4/xfconf/xfconfd";
    if (QFile::exists(daemon)) return daemon;
  }
  return {};
}

} // namespace

XfcePanel::XfcePanel(const XServer& display, const PrivateBus& session) {
  const auto daemon = settingsDaemon();
  if (daemon.isEmpty() || QStandardPaths::findExecutable("xfce4-panel").isEmpty()) {
    skipReason_ = "Xfce's panel is not installed (scripts/install-deps installs xfce4-panel and xfconf)";
    return;
  }
  const auto folder = home_ / "config/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  writeFile(folder / "xfce4-panel.xml", panelSettings);
  environment_ = QProcessEnvironment::systemEnvironment();
  environment_.insert("DISPLAY", display.display());
  environment_.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(session.address()));
  for (const auto& [variable, name] :
       {std::pair{"HOME", ""}, {"XDG_CONFIG_HOME", "config"}, {"XDG_CACHE_HOME", "cache"}, {"XDG_DATA_HOME", "data"}}) {
    environment_.insert(variable, QString::fromStdString((home_ / name).string()));
  }
  settings_.setProcessEnvironment(environment_);
  settings_.start(daemon, {});
  if (!settings_.waitForStarted(5000)) {
    skipReason_ = "xfconfd did not start";
    return;
  }
  if (!startPanel()) skipReason_ = "Xfce's panel did not start, or its tray offered no StatusNotifierWatcher";
}

XfcePanel::~XfcePanel() {
  stopPanel();
  settings_.terminate();
  if (!settings_.waitForFinished(5000)) settings_.kill();
}

bool XfcePanel::startPanel() {
  panel_ = std::make_unique<QProcess>();
  panel_->setProcessEnvironment(environment_);
  panel_->start("xfce4-panel", {});
  if (!panel_->waitForStarted(5000)) return false;
  // The tray plugin runs in a process of its own, which owns the watcher.
  auto bus = QDBusConnection::connectToBus(environment_.value("DBUS_SESSION_BUS_ADDRESS"), "xfce-panel-test");
  const bool up = waitUntil([&] { return bus.interface()->isServiceRegistered("org.kde.StatusNotifierWatcher"); }, 30);
  QDBusConnection::disconnectFromBus("xfce-panel-test");
  return up;
}

void XfcePanel::stopPanel() {
  if (!panel_ || panel_->state() == QProcess::NotRunning) return;
  panel_->terminate();
  if (!panel_->waitForFinished(10000)) panel_->kill();
}

bool XfcePanel::restart() {
  stopPanel();
  return startPanel();
}

std::optional<QByteArray> XfcePanel::xfconf(const QStringList& arguments) {
  QProcess query;
  query.setProcessEnvironment(environment_);
  query.start("xfconf-query", QStringList{"-c", "xfce4-panel"} + arguments);
  if (!query.waitForFinished(10000) || query.exitCode() != 0) return std::nullopt;
  return query.readAllStandardOutput();
}

// xfconf-query prints "Value is an array with 2 items:", a blank line and
// the values, one a line.
QStringList XfcePanel::trayList(const QString& name) {
  const auto printed = xfconf({"-p", "/plugins/plugin-1/" + name});
  if (!printed) return {};
  auto lines = QString::fromUtf8(*printed).split('\n', Qt::SkipEmptyParts);
  if (!lines.isEmpty() && lines.front().startsWith("Value is an array")) lines.removeFirst();
  return lines;
}

bool XfcePanel::setTrayList(const QString& name, const QStringList& values) {
  QStringList arguments{"-p", "/plugins/plugin-1/" + name, "-n", "-a"};
  for (const auto& value : values)
    arguments << "-t"
              << "string"
              << "-s" << value;
  return xfconf(arguments).has_value();
}

} // namespace lb::test
