#include "app/ctl/ProgramClient.h"

#include "scripting/BusNames.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QCoreApplication>
#include <QTimer>

namespace lb {

ProgramClient::ProgramClient(Start start) : bus_(QDBusConnection::sessionBus()), start_(start) {}

bool ProgramClient::running() {
  return bus_.isConnected() && bus_.interface()->isServiceRegistered(bus::serviceName).value();
}

std::optional<std::string> ProgramClient::reach() {
  if (!bus_.isConnected()) return "there is no session bus (" + bus_.lastError().message().toStdString() + ")";
  if (running()) return std::nullopt;
  if (start_ == Start::never) return "it is not running";
  // The bus answers once the started program owns its name, or says why it
  // could not start it; a program's start may take longer than a call.
  auto message = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                                "StartServiceByName");
  message.setArguments({QString(bus::serviceName), 0u});
  auto reply = bus_.call(message, QDBus::Block, 60000);
  if (reply.type() == QDBusMessage::ErrorMessage) return reply.errorMessage().toStdString();
  return std::nullopt;
}

QDBusMessage ProgramClient::call(const QString& path, const QString& interface, const QString& method,
                                 const QVariantList& arguments, std::chrono::milliseconds limit) {
  auto message = QDBusMessage::createMethodCall(bus::serviceName, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(start_ == Start::onDemand);
  return bus_.call(message, QDBus::Block, static_cast<int>(limit.count()));
}

QDBusMessage ProgramClient::application(const QString& method, const QVariantList& arguments,
                                        std::chrono::milliseconds limit) {
  return call(bus::applicationPath, bus::applicationInterface, method, arguments, limit);
}

QDBusMessage ProgramClient::device(const QString& path, const QString& method) {
  return call(path, bus::deviceInterface, method);
}

QVariantMap ProgramClient::properties(const QString& path) {
  auto reply = call(path, "org.freedesktop.DBus.Properties", "GetAll", {bus::deviceInterface});
  return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

QList<QDBusObjectPath> ProgramClient::devices() {
  auto reply = call(bus::applicationPath, "org.freedesktop.DBus.Properties", "Get",
                    {bus::applicationInterface, "Devices"});
  return qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().value(0).value<QDBusVariant>().variant());
}

void ProgramClient::watch(const QString& path) {
  watched_ = path;
  bus_.connect(bus::serviceName, path, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
               SLOT(changed(QDBusMessage)));
}

void ProgramClient::changed(const QDBusMessage& message) {
  if (message.arguments().value(0).toString() != bus::deviceInterface) return;
  auto values = qdbus_cast<QVariantMap>(message.arguments().value(1));
  if (values.contains("Connected")) connected_ = values.value("Connected").toBool();
}

bool ProgramClient::waitUntilConnected(bool connected, std::chrono::seconds limit) {
  // The change may have come before the signal was routed to us.
  if (property(watched_, "Connected").toBool() == connected) return true;
  QTimer deadline;
  deadline.setSingleShot(true);
  deadline.start(limit);
  while (connected_ != connected && deadline.isActive()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return connected_ == connected;
}

} // namespace lb
