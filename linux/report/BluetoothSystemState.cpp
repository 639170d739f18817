#include "linux/report/BluetoothSystemState.h"

#include "linux/bluez/BluezNames.h"
#include "linux/report/DBusText.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QFileInfo>
#include <QProcess>

#include <map>

namespace lb {

namespace {

using Properties = std::map<QString, QString>;
using Interfaces = std::map<QString, Properties>;

// GetManagedObjects' answer (a{oa{sa{sv}}}), every value as text, ordered by
// path.
std::map<QString, Interfaces> objects(const QDBusArgument& argument) {
  std::map<QString, Interfaces> result;
  argument.beginMap();
  while (!argument.atEnd()) {
    argument.beginMapEntry();
    QDBusObjectPath path;
    argument >> path;
    auto& interfaces = result[path.path()];
    argument.beginMap();
    while (!argument.atEnd()) {
      argument.beginMapEntry();
      QString interface;
      argument >> interface;
      auto& properties = interfaces[interface];
      argument.beginMap();
      while (!argument.atEnd()) {
        argument.beginMapEntry();
        QString name;
        QDBusVariant value;
        argument >> name >> value;
        properties[name] = dbusText(value.variant());
        argument.endMapEntry();
      }
      argument.endMap();
      argument.endMapEntry();
    }
    argument.endMap();
    argument.endMapEntry();
  }
  argument.endMap();
  return result;
}

void describeObject(std::string& text, const QString& path, const Interfaces& interfaces) {
  text += "\n" + path.toStdString() + "\n";
  for (const auto& [interface, properties] : interfaces) {
    if (interface.startsWith("org.freedesktop.DBus.")) continue;
    text += "  " + interface.toStdString() + "\n";
    for (const auto& [name, value] : properties)
      text += "    " + name.toStdString() + ": " + value.toStdString() + "\n";
  }
}

} // namespace

std::string BluetoothSystemState::bluetoothdVersion() {
  // BlueZ's interfaces do not tell its version; the daemon does.
  for (const char* program :
       {"/usr/libexec/bluetooth/bluetoothd", "/usr/lib/bluetooth/bluetoothd", "/usr/sbin/bluetoothd"}) {
    if (!QFileInfo(program).isExecutable()) continue;
    QProcess daemon;
    daemon.start(program, {"--version"});
    if (daemon.waitForFinished(3000) && daemon.exitCode() == 0)
      return daemon.readAllStandardOutput().trimmed().toStdString();
    return std::string("unknown (") + program + " --version did not answer)";
  }
  return "unknown (bluetoothd is not installed where Debian puts it)";
}

std::string BluetoothSystemState::describe(QDBusConnection bus) {
  std::string text = "bluetoothd " + bluetoothdVersion() + "\n";
  auto call = QDBusMessage::createMethodCall(bluez::service, "/", "org.freedesktop.DBus.ObjectManager",
                                             "GetManagedObjects");
  const auto reply = bus.call(call, QDBus::Block, 5000);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
    return text + "BlueZ did not answer on the system bus: " + reply.errorName().toStdString() + " " +
           reply.errorMessage().toStdString() + "\n";
  }
  const auto all = objects(reply.arguments().first().value<QDBusArgument>());
  text += "\nAdapters\n";
  for (const auto& [path, interfaces] : all) {
    if (interfaces.contains(bluez::adapterInterface)) describeObject(text, path, interfaces);
  }
  text += "\nPaired devices\n";
  for (const auto& [path, interfaces] : all) {
    auto device = interfaces.find(bluez::deviceInterface);
    if (device == interfaces.end()) continue;
    auto paired = device->second.find("Paired");
    if (paired != device->second.end() && paired->second == "true") describeObject(text, path, interfaces);
  }
  return text;
}

} // namespace lb
