#pragma once

#include "linux/bluez/BluezMirror.h"
#include "ports/LowEnergyCentral.h"

#include <QDBusConnection>
#include <QObject>

#include <set>

class QDBusMessage;

namespace lb {

// The Low Energy central over BlueZ: discovery filtered to LE on every
// adapter, Device1's Connect, and the GattService1 and GattCharacteristic1
// objects that BlueZ resolves under a connected device. A peripheral is
// identified by its device's object path. An advertisement shows as a new
// device or a new RSSI while discovering.
class BluezLowEnergyCentral final : public QObject, public LowEnergyCentral {
  Q_OBJECT

public:
  explicit BluezLowEnergyCentral(QDBusConnection bus);
  ~BluezLowEnergyCentral() override;

  void setDelegate(LowEnergyCentralDelegate* delegate) override;
  void scanForPeripherals() override;
  void stopScan() override;
  void connect(const std::string& peripheral) override;
  void discoverServices(const std::string& peripheral) override;
  void discoverCharacteristics(const std::string& peripheral, const std::string& service) override;
  void readValue(const std::string& peripheral, const std::string& characteristic) override;

private slots:
  void interfacesAdded(const QDBusMessage& message);
  void interfacesRemoved(const QDBusMessage& message);
  void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                         const QDBusMessage& message);

private:
  // Sends it; `answered` gets the reply, or the error.
  void callAsync(const QDBusMessage& message, std::function<void(const QDBusMessage& reply)> answered);
  void reportState();
  void reportServices(const QString& peripheral);
  LowEnergyPeripheral peripheral(const QString& path) const;
  LowEnergyCharacteristic characteristic(const QString& path) const;
  // The objects with `interface` whose property `owner` is `path`.
  std::vector<QString> children(const QString& interface, const char* owner, const QString& path) const;

  QDBusConnection bus_;
  BluezMirror mirror_;
  bool loaded_ = false;
  LowEnergyCentralDelegate* delegate_ = nullptr;
  std::set<QString> scanning_; // adapters
  std::set<QString> wanted_;   // peripherals asked to connect
  std::set<QString> awaitingServices_;
};

} // namespace lb
