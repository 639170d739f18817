#pragma once

#include "foundation/BluetoothAddress.h"
#include "linux/bluez/BluezNames.h"

#include <QDBusObjectPath>
#include <QString>
#include <QVariantMap>

#include <map>
#include <mutex>
#include <optional>
#include <vector>

class QDBusMessage;

namespace lb {

using BluezInterfaceMap = QMap<QString, QVariantMap>;
using BluezObjectMap = QMap<QDBusObjectPath, BluezInterfaceMap>;

// BlueZ's objects and their properties, as last reported: filled once from
// GetManagedObjects and kept current from the signals on the main thread,
// read from any thread.
class BluezMirror {
public:
  // Registers the D-Bus types of BlueZ's answers; before the first call.
  static void registerTypes();

  void clear();
  // What GetManagedObjects answered, in place of everything mirrored.
  void replace(const BluezObjectMap& objects);
  // The object-manager signals, applied: the object's path and the names of
  // its interfaces added or removed; an empty path for another message.
  std::pair<QString, QStringList> interfacesAdded(const QDBusMessage& signal);
  std::pair<QString, QStringList> interfacesRemoved(const QDBusMessage& signal);
  // The value before the change, if there was one.
  std::optional<QVariant> updateProperties(const QString& path, const QString& interface, const QVariantMap& changed,
                                           const QStringList& invalidated, const QString& watched);

  std::optional<QVariant> property(const QString& path, const QString& interface, const QString& name) const;
  // The device with this address (as BlueZ writes it), across all adapters.
  std::optional<QString> devicePath(const BluetoothAddress& address) const;
  std::vector<QString> devicePaths() const { return paths(bluez::deviceInterface); }
  // The objects that have this interface, in order.
  std::vector<QString> paths(const QString& interface) const;

private:
  mutable std::mutex mutex_;
  std::map<QString, std::map<QString, QVariantMap>> objects_;
};

} // namespace lb

Q_DECLARE_METATYPE(lb::BluezInterfaceMap)
Q_DECLARE_METATYPE(lb::BluezObjectMap)
