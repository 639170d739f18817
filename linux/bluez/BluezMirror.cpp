#include "linux/bluez/BluezMirror.h"

#include "linux/bluez/BluezNames.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>

namespace lb {

void BluezMirror::registerTypes() {
  qDBusRegisterMetaType<BluezInterfaceMap>();
  qDBusRegisterMetaType<BluezObjectMap>();
}

void BluezMirror::clear() {
  std::lock_guard lock(mutex_);
  objects_.clear();
}

void BluezMirror::replace(const BluezObjectMap& objects) {
  std::lock_guard lock(mutex_);
  objects_.clear();
  for (auto object = objects.begin(); object != objects.end(); ++object) {
    auto& interfaces = objects_[object.key().path()];
    for (auto it = object.value().begin(); it != object.value().end(); ++it) interfaces[it.key()] = it.value();
  }
}

std::pair<QString, QStringList> BluezMirror::interfacesAdded(const QDBusMessage& signal) {
  const auto arguments = signal.arguments();
  if (arguments.size() != 2) return {};
  const auto path = arguments[0].value<QDBusObjectPath>().path();
  const auto added = qdbus_cast<BluezInterfaceMap>(arguments[1].value<QDBusArgument>());
  std::lock_guard lock(mutex_);
  auto& object = objects_[path];
  for (auto it = added.begin(); it != added.end(); ++it) object[it.key()] = it.value();
  return {path, added.keys()};
}

std::pair<QString, QStringList> BluezMirror::interfacesRemoved(const QDBusMessage& signal) {
  const auto arguments = signal.arguments();
  if (arguments.size() != 2) return {};
  const auto path = arguments[0].value<QDBusObjectPath>().path();
  const auto removed = arguments[1].toStringList();
  std::lock_guard lock(mutex_);
  if (auto found = objects_.find(path); found != objects_.end()) {
    for (const auto& name : removed) found->second.erase(name);
    if (found->second.empty()) objects_.erase(found);
  }
  return {path, removed};
}

std::optional<QVariant> BluezMirror::updateProperties(const QString& path, const QString& interface,
                                                      const QVariantMap& changed, const QStringList& invalidated,
                                                      const QString& watched) {
  std::lock_guard lock(mutex_);
  auto found = objects_.find(path);
  if (found == objects_.end()) return std::nullopt;
  auto& properties = found->second[interface];
  std::optional<QVariant> before;
  if (auto old = properties.find(watched); old != properties.end()) before = *old;
  for (auto it = changed.begin(); it != changed.end(); ++it) properties.insert(it.key(), it.value());
  for (const auto& name : invalidated) properties.remove(name);
  return before;
}

std::optional<QVariant> BluezMirror::property(const QString& path, const QString& interface,
                                              const QString& name) const {
  std::lock_guard lock(mutex_);
  auto object = objects_.find(path);
  if (object == objects_.end()) return std::nullopt;
  auto properties = object->second.find(interface);
  if (properties == object->second.end()) return std::nullopt;
  auto value = properties->second.find(name);
  if (value == properties->second.end()) return std::nullopt;
  return *value;
}

std::optional<QString> BluezMirror::devicePath(const BluetoothAddress& address) const {
  std::lock_guard lock(mutex_);
  for (const auto& [path, interfaces] : objects_) {
    auto device = interfaces.find(bluez::deviceInterface);
    if (device == interfaces.end()) continue;
    if (BluetoothAddress::parse(device->second.value("Address").toString().toStdString()) == address) return path;
  }
  return std::nullopt;
}

std::vector<QString> BluezMirror::paths(const QString& interface) const {
  std::lock_guard lock(mutex_);
  std::vector<QString> found;
  for (const auto& [path, interfaces] : objects_) {
    if (interfaces.contains(interface)) found.push_back(path);
  }
  return found;
}

} // namespace lb
