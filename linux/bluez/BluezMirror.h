#pragma once

#include "foundation/BluetoothAddress.h"

#include <QString>
#include <QVariantMap>

#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace lb {

// BlueZ's objects and their properties, as last reported: filled once from
// GetManagedObjects and kept current from the signals on the main thread,
// read from any thread.
class BluezMirror {
public:
  static constexpr const char* deviceInterface = "org.bluez.Device1";
  static constexpr const char* adapterInterface = "org.bluez.Adapter1";

  void clear();
  void addInterfaces(const QString& path, const std::map<QString, QVariantMap>& interfaces);
  void removeInterfaces(const QString& path, const QStringList& interfaces);
  // The value before the change, if there was one.
  std::optional<QVariant> updateProperties(const QString& path, const QString& interface, const QVariantMap& changed,
                                           const QStringList& invalidated, const QString& watched);

  std::optional<QVariant> property(const QString& path, const QString& interface, const QString& name) const;
  // The device with this address (as BlueZ writes it), across all adapters.
  std::optional<QString> devicePath(const BluetoothAddress& address) const;
  std::vector<QString> devicePaths() const;

private:
  mutable std::mutex mutex_;
  std::map<QString, std::map<QString, QVariantMap>> objects_;
};

} // namespace lb
