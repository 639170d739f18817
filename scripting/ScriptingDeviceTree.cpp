#include "scripting/ScriptingDeviceTree.h"

#include "scripting/ScriptingService.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

namespace lb {

namespace {

const QString propertiesInterface = "org.freedesktop.DBus.Properties";

QDBusMessage error(const QDBusMessage& message, QDBusError::ErrorType type, const QString& text) {
  return message.createErrorReply(type, text);
}

// "a Boolean (b)", for error messages.
QString typeName(const QString& signature) {
  static const QMap<QString, QString> names{
      {"b", "a Boolean"}, {"s", "a string"}, {"x", "an integer"}, {"i", "an integer"}, {"ay", "bytes"}};
  return names.value(signature, "a value") + " (" + signature + ")";
}

QString writableNames() {
  QStringList names;
  for (const auto& property : ScriptingDeviceObject::properties()) {
    if (property.set) names << property.name;
  }
  return names.join(", ");
}

} // namespace

QString ScriptingDeviceTree::introspect(const QString& path) const {
  if (path == bus::deviceRoot) {
    QString children;
    for (const auto& [ID, object] : objects_) children += QString("<node name=\"%1\"/>").arg(ID);
    return children;
  }
  if (!device(path)) return {};
  QString xml = QString("<interface name=\"%1\">\n").arg(bus::deviceInterface);
  for (const auto& property : ScriptingDeviceObject::properties()) {
    xml += QString("  <property name=\"%1\" type=\"%2\" access=\"%3\"/>\n")
               .arg(property.name, property.signature, property.set ? "readwrite" : "read");
  }
  for (const auto& method : ScriptingDeviceObject::methods()) {
    xml += QString("  <method name=\"%1\"><arg name=\"outcome\" type=\"s\" direction=\"out\"/></method>\n")
               .arg(method.name);
  }
  xml +=
      "  <annotation name=\"org.lanternbud.Missing\" value=\"Address: empty; BatteryLevel: -1; icon data: empty\"/>\n";
  return xml + "</interface>\n";
}

bool ScriptingDeviceTree::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  // Declined messages reach Qt's own handlers, which write the introspection
  // document around introspect().
  if (message.interface() == "org.freedesktop.DBus.Introspectable") return false;
  QDBusConnection bus(connection);
  if (auto* found = device(message.path())) {
    bus.send(answer(message, *found));
  } else {
    bus.send(error(message, QDBusError::UnknownObject, "No device has the path " + message.path().left(100) + "."));
  }
  return true;
}

ScriptingDeviceObject* ScriptingDeviceTree::device(const QString& path) const {
  const QString prefix = QString(bus::deviceRoot) + "/";
  bool isNumber = false;
  const auto tail = path.startsWith(prefix) ? path.mid(prefix.size()) : QString();
  const auto ID = tail.toLongLong(&isNumber);
  // One path a device: "/Device/01" is not device 1.
  auto found = isNumber && QString::number(ID) == tail ? objects_.find(ID) : objects_.end();
  return found == objects_.end() ? nullptr : found->second.get();
}

QDBusMessage ScriptingDeviceTree::answer(const QDBusMessage& message, ScriptingDeviceObject& device) const {
  const auto* method = ScriptingDeviceObject::method(message.member());
  if (method && (message.interface().isEmpty() || message.interface() == bus::deviceInterface)) {
    if (!message.signature().isEmpty()) {
      return error(message, QDBusError::InvalidArgs,
                   message.member() + " takes no arguments, not (" + message.signature() + ").");
    }
    auto outcome = device.call(*method);
    if (!outcome) return error(message, QDBusError::UnknownObject, "The device " + message.path() + " is gone.");
    return message.createReply(ScriptingDeviceObject::describe(*outcome));
  }
  if (message.interface() != propertiesInterface) {
    return error(message, QDBusError::UnknownMethod,
                 "A device has the methods Connect, Disconnect and Toggle, and properties: use " + propertiesInterface +
                     ".Get, GetAll or Set.");
  }
  static const QMap<QString, QString> takes{{"Get", "ss"}, {"GetAll", "s"}, {"Set", "ssv"}};
  const auto member = message.member();
  if (!takes.contains(member)) return error(message, QDBusError::UnknownMethod, "No method " + member + ".");
  if (message.signature() != takes[member]) {
    return error(message, QDBusError::InvalidArgs,
                 member + " takes (" + takes[member] + "), not (" + message.signature() + ").");
  }
  const auto arguments = message.arguments();
  const auto interface = arguments.value(0).toString();
  if (interface != bus::deviceInterface) {
    return error(message, QDBusError::UnknownInterface, "A device has no interface \"" + interface + "\".");
  }
  // A client asked: battery values are read if stale.
  const auto values = device.values(BatteryReading::ifStale);
  if (member == "GetAll") return message.createReply(QVariant::fromValue(values));
  const auto name = arguments.value(1).toString();
  const auto* property = ScriptingDeviceObject::property(name);
  if (!property) return error(message, QDBusError::UnknownProperty, "A device has no property \"" + name + "\".");
  if (member == "Get") return message.createReply(QVariant::fromValue(QDBusVariant(values.value(name))));
  if (!property->set) {
    return error(message, QDBusError::PropertyReadOnly,
                 name + " is read-only; only " + writableNames() + " can be set.");
  }
  const auto sent = arguments.value(2).value<QDBusVariant>().variant();
  const auto sentSignature = QString::fromLatin1(QDBusMetaType::typeToSignature(sent.metaType()));
  if (sentSignature != property->signature) {
    return error(
        message, QDBusError::InvalidArgs,
        QString("%1 takes %2, not a value of type %3.").arg(name, typeName(property->signature), sentSignature));
  }
  device.set(*property, sent);
  return message.createReply();
}

} // namespace lb
