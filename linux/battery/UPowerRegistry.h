#pragma once

#include "ports/BatterySources.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <map>

class QDBusMessage;
class QDBusServiceWatcher;

namespace lb {

// UPower's power devices as the battery registry. Each device is one entry
// named "org.freedesktop.UPower.Device" whose properties are read the way
// the battery search reads any entry: "DeviceAddress" (the Bluetooth
// address in its NativePath, as BlueZ writes addresses), "SerialNumber"
// (Serial), "Product" (Model) and "BatteryPercentSingle" (Percentage as an
// integer). The devices are mirrored from UPower's signals, so reading the
// registry sends nothing. Lives on the main thread.
class UPowerRegistry final : public QObject {
  Q_OBJECT

public:
  static constexpr const char* entryName = "org.freedesktop.UPower.Device";

  explicit UPowerRegistry(QDBusConnection bus);
  ~UPowerRegistry() override;

  std::vector<BatterySources::RegistryEntry> entries() const;

  static SettingsValue::Dictionary propertiesOf(const QVariantMap& upower);

private slots:
  void deviceAdded(const QDBusMessage& message);
  void deviceRemoved(const QDBusMessage& message);
  void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                         const QDBusMessage& message);

private:
  void load();
  void read(const QString& path);

  QDBusConnection bus_;
  QDBusServiceWatcher* watcher_;
  std::map<QString, QVariantMap> devices_;
};

} // namespace lb
