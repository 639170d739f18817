#include "tests/support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QVariantMap>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace lb::test {

PrivateBus::PrivateBus(Kind kind) {
  if (!std::filesystem::exists("/usr/bin/dbus-daemon")) {
    skipReason_ = "dbus-daemon is not installed (scripts/install-deps installs it)";
    return;
  }
  auto socket = folder_ / "system_bus_socket";
  test::writeFile(folder_ / "bus.conf",
                  R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>)" + std::string(kind == Kind::system ? "system" : "session") +
                      R"(</type>
  <listen>unix:path=)" +
                      socket.string() + R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
)");
  daemon_ = std::make_unique<QProcess>();
  daemon_->setStandardErrorFile(QProcess::nullDevice()); // it complains of fd limits it may not raise
  // It prints its address once it accepts connections; the socket file
  // appears a moment earlier, and a connection then is refused.
  daemon_->start("/usr/bin/dbus-daemon", {"--config-file=" + QString::fromStdString((folder_ / "bus.conf").string()),
                                          "--nofork", "--print-address"});
  if (!daemon_->waitForStarted(5000) || !waitUntil([&] { return daemon_->canReadLine(); }, 30)) {
    skipReason_ = "dbus-daemon did not start";
    return;
  }
  address_ = "unix:path=" + socket.string();
  control_ = std::make_unique<QDBusConnection>(connect("control"));
  if (!control_->isConnected()) skipReason_ = "cannot connect to the private bus";
}

PrivateBus::~PrivateBus() {
  killBluez();
  for (auto* process : {notifications_.get(), upower_.get(), portal_.get(), daemon_.get()}) {
    if (!process) continue;
    process->kill();
    process->waitForFinished(5000);
  }
}

// Qt keeps connections by name; a name per bus keeps one test's connections
// from being handed to the next.
QDBusConnection PrivateBus::connect(const QString& name) {
  return QDBusConnection::connectToBus(QString::fromStdString(address_), name + "@" + QString::fromStdString(address_));
}

std::unique_ptr<QProcess> PrivateBus::startModel(const QStringList& arguments, const QString& service,
                                                 const std::string& what) {
  if (!std::filesystem::exists("/usr/lib/python3/dist-packages/dbusmock")) {
    skipReason_ = "python3-dbusmock is not installed (scripts/install-deps installs it)";
    return nullptr;
  }
  auto model = std::make_unique<QProcess>();
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DBUS_SYSTEM_BUS_ADDRESS", QString::fromStdString(address_));
  environment.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(address_));
  model->setProcessEnvironment(environment);
  model->setStandardOutputFile(QProcess::nullDevice());
  // Debian's python3 with its D-Bus modules, whatever python3 comes first on
  // PATH.
  model->start("/usr/bin/python3", arguments);
  if (!model->waitForStarted(5000) ||
      !waitUntil([&] { return control_->interface()->isServiceRegistered(service).value(); }, 30)) {
    skipReason_ = "python3-dbusmock's " + what + " model did not start";
    return nullptr;
  }
  return model;
}

bool PrivateBus::startBluez() {
  bluez_ = startModel(
      {"-m", "dbusmock", "--system", "--template", LANTERNBUD_TEST_SUPPORT_DIR "/bluez_mock_template.py"}, "org.bluez",
      "BlueZ");
  return bluez_ != nullptr;
}

bool PrivateBus::startPortal() {
  portal_ = startModel(
      {"-m", "dbusmock", "--session", "--template", LANTERNBUD_TEST_SUPPORT_DIR "/global_shortcuts_portal_template.py"},
      "org.freedesktop.portal.Desktop", "the desktop portal");
  return portal_ != nullptr;
}

QDBusMessage PrivateBus::portal(const QString& method, const QVariantList& arguments) {
  return call("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.lanternbud.TestPortal", method,
              arguments);
}

bool PrivateBus::startNotifications() {
  notifications_ = startModel({"-m", "dbusmock", "--session", "--template", "notification_daemon"},
                              "org.freedesktop.Notifications", "notification daemon");
  return notifications_ != nullptr;
}

QList<QVariantList> PrivateBus::notificationCalls() {
  auto reply = call("org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.freedesktop.DBus.Mock",
                    "GetMethodCalls", {"Notify"});
  QList<QVariantList> calls;
  const auto list = reply.arguments().value(0).value<QDBusArgument>();
  list.beginArray();
  while (!list.atEnd()) {
    qulonglong time = 0;
    QVariantList arguments;
    list.beginStructure();
    list >> time >> arguments;
    list.endStructure();
    calls.append(arguments);
  }
  list.endArray();
  return calls;
}

bool PrivateBus::startUPower() {
  upower_ = startModel({"-m", "dbusmock", "--system", "--template", "upower"}, "org.freedesktop.UPower", "UPower");
  return upower_ != nullptr;
}

QDBusMessage PrivateBus::upower(const QString& method, const QVariantList& arguments, const QString& path) {
  return call("org.freedesktop.UPower", path, "org.freedesktop.DBus.Mock", method, arguments);
}

QString PrivateBus::bluezDevicePath(std::string address) {
  std::replace(address.begin(), address.end(), ':', '_');
  return QString::fromStdString("/org/bluez/hci0/dev_" + address);
}

bool PrivateBus::bluezConnected(const std::string& address) {
  auto reply = bluez(bluezDevicePath(address), "org.freedesktop.DBus.Properties", "Get",
                     {"org.bluez.Device1", "Connected"});
  return reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

QStringList PrivateBus::statusNotifierItems() {
  return call("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
              {"org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems"})
      .arguments()
      .value(0)
      .value<QDBusVariant>()
      .variant()
      .toStringList();
}

void PrivateBus::killBluez() {
  if (!bluez_) return;
  bluez_->kill();
  bluez_->waitForFinished(5000);
  bluez_.reset();
}

void PrivateBus::pauseBluez(bool paused) {
  if (bluez_) ::kill(static_cast<pid_t>(bluez_->processId()), paused ? SIGSTOP : SIGCONT);
}

QDBusMessage PrivateBus::bluez(const QString& path, const QString& interface, const QString& method,
                               const QVariantList& arguments) {
  return call("org.bluez", path, interface, method, arguments);
}

QDBusMessage PrivateBus::call(const QString& service, const QString& path, const QString& interface,
                              const QString& method, const QVariantList& arguments) {
  auto message = QDBusMessage::createMethodCall(service, path, interface, method);
  message.setArguments(arguments);
  return control_->call(message, QDBus::Block, 10000);
}

PrivateBus::MessageCounter::MessageCounter(const PrivateBus& bus, const QString& rule) {
  // The monitor says nothing until it sees a message: it watches for a
  // marker too, sent until it shows, so that counting starts once it is in.
  monitor_.start("/usr/bin/dbus-monitor", {"--address", QString::fromStdString(bus.address()), rule,
                                           "type='signal',interface='org.lanternbud.Test',member='Watching'"});
  started_ = monitor_.waitForStarted(5000) && waitUntil([&] {
               bus.control_->send(QDBusMessage::createSignal("/", "org.lanternbud.Test", "Watching"));
               pending_ += monitor_.readAllStandardOutput();
               return pending_.contains("member=Watching");
             });
  pending_.clear();
}

PrivateBus::MessageCounter::~MessageCounter() {
  monitor_.kill();
  monitor_.waitForFinished(5000);
}

int PrivateBus::MessageCounter::count() {
  QCoreApplication::processEvents();
  pending_ += monitor_.readAllStandardOutput();
  // A header line a message: "method call time=… sender=:1.5 -> …".
  for (qsizetype end; (end = pending_.indexOf('\n')) >= 0; pending_.remove(0, end + 1)) {
    const QByteArray line = pending_.left(end);
    const bool header = line.startsWith("method ") || line.startsWith("signal ") || line.startsWith("error ");
    if (header && !line.contains("member=Watching")) ++count_;
  }
  return count_;
}

} // namespace lb::test
