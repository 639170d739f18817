#include "linux/bluez/BluezMirror.h"

namespace lb {

void BluezMirror::clear() {
  std::lock_guard lock(mutex_);
  objects_.clear();
}

void BluezMirror::addInterfaces(const QString& path, const std::map<QString, QVariantMap>& interfaces) {
  std::lock_guard lock(mutex_);
  auto& object = objects_[path];
  for (const auto& [name, properties] : interfaces) object[name] = properties;
}

void BluezMirror::removeInterfaces(const QString& path, const QStringList& interfaces) {
  std::lock_guard lock(mutex_);
  auto found = objects_.find(path);
  if (found == objects_.end()) return;
  for (const auto& name : interfaces) found->second.erase(name);
  if (found->second.empty()) objects_.erase(found);
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
    auto device = interfaces.find(deviceInterface);
    if (device == interfaces.end()) continue;
    if (BluetoothAddress::parse(device->second.value("Address").toString().toStdString()) == address) return path;
  }
  return std::nullopt;
}

std::vector<QString> BluezMirror::devicePaths() const {
  std::lock_guard lock(mutex_);
  std::vector<QString> paths;
  for (const auto& [path, interfaces] : objects_) {
    if (interfaces.contains(deviceInterface)) paths.push_back(path);
  }
  return paths;
}

} // namespace lb
