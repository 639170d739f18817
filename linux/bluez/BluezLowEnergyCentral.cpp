#include "linux/bluez/BluezLowEnergyCentral.h"

#include "foundation/PXRLog.h"
#include "linux/bluez/BluezNames.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QTimer>

namespace lb {

namespace {

constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

// bluetoothd's battery plugin claims a device's Battery Service, and BlueZ
// exports no GATT objects for a claimed service: the level is the device's
// Battery1.Percentage instead. It is shown as that service with its Battery
// Level characteristic, under these identifiers below the device's path.
const QString claimedBatteryService = "/Battery1";
const QString claimedBatteryLevel = "/Battery1/level";
constexpr const char* batteryServiceUUID = "0000180f-0000-1000-8000-00805f9b34fb";
constexpr const char* batteryLevelUUID = "00002a19-0000-1000-8000-00805f9b34fb";

QString pathText(const QVariant& value) {
  return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path() : value.toString();
}

QDBusMessage call(const QString& path, const QString& interface, const QString& method) {
  return QDBusMessage::createMethodCall(bluez::service, path, interface, method);
}

std::string errorText(const QDBusMessage& reply) {
  return (reply.errorName() + ": " + reply.errorMessage()).toStdString();
}

} // namespace

BluezLowEnergyCentral::BluezLowEnergyCentral(QDBusConnection bus) : bus_(std::move(bus)) {
  BluezMirror::registerTypes();
  bus_.connect(bluez::service, "/", objectManager, "InterfacesAdded", this, SLOT(interfacesAdded(QDBusMessage)));
  bus_.connect(bluez::service, "/", objectManager, "InterfacesRemoved", this, SLOT(interfacesRemoved(QDBusMessage)));
  bus_.connect(bluez::service, QString(), "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
               SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));
  callAsync(call("/", objectManager, "GetManagedObjects"), [this](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage) {
      PXR_LOG_ERROR("The Low Energy reader finds no BlueZ: " + errorText(reply));
      return;
    }
    mirror_.replace(qdbus_cast<BluezObjectMap>(reply.arguments().value(0).value<QDBusArgument>()));
    loaded_ = true;
    reportState();
  });
}

BluezLowEnergyCentral::~BluezLowEnergyCentral() = default;

void BluezLowEnergyCentral::callAsync(const QDBusMessage& message,
                                      std::function<void(const QDBusMessage& reply)> answered) {
  auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(message, 30'000), this);
  QObject::connect(pending, &QDBusPendingCallWatcher::finished, this,
                   [answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
                     answered(finished->reply());
                     finished->deleteLater();
                   });
}

void BluezLowEnergyCentral::setDelegate(LowEnergyCentralDelegate* delegate) {
  delegate_ = delegate;
  if (loaded_) QTimer::singleShot(0, this, [this] { reportState(); });
}

void BluezLowEnergyCentral::reportState() {
  if (!delegate_ || !loaded_) return;
  bool poweredOn = false;
  for (const auto& adapter : mirror_.paths(bluez::adapterInterface))
    poweredOn = poweredOn || mirror_.property(adapter, bluez::adapterInterface, "Powered").value_or(false).toBool();
  delegate_->centralManagerDidUpdateState(poweredOn);
}

void BluezLowEnergyCentral::scanForPeripherals() {
  for (const auto& adapter : mirror_.paths(bluez::adapterInterface)) {
    if (scanning_.contains(adapter)) continue;
    scanning_.insert(adapter);
    auto filter = call(adapter, bluez::adapterInterface, "SetDiscoveryFilter");
    filter << QVariantMap{{"Transport", QString("le")}};
    callAsync(filter, [this, adapter](const QDBusMessage& reply) {
      if (reply.type() == QDBusMessage::ErrorMessage)
        PXR_LOG_ERROR("Cannot limit discovery to Low Energy on " + adapter.toStdString() + ": " + errorText(reply));
      callAsync(call(adapter, bluez::adapterInterface, "StartDiscovery"), [adapter](const QDBusMessage& started) {
        if (started.type() == QDBusMessage::ErrorMessage)
          PXR_LOG_ERROR("Cannot scan for Low Energy devices on " + adapter.toStdString() + ": " + errorText(started));
      });
    });
  }
}

void BluezLowEnergyCentral::stopScan() {
  // No answer is awaited: this may be the last thing the program does.
  for (const auto& adapter : scanning_) bus_.send(call(adapter, bluez::adapterInterface, "StopDiscovery"));
  scanning_.clear();
}

void BluezLowEnergyCentral::connect(const std::string& identifier) {
  const auto path = QString::fromStdString(identifier);
  wanted_.insert(path);
  callAsync(call(path, bluez::deviceInterface, "Connect"), [this, path](const QDBusMessage& reply) {
    if (!delegate_) return;
    if (reply.type() != QDBusMessage::ErrorMessage) return; // Connected follows as a property change
    if (reply.errorName() == bluez::errorAlreadyConnected) return delegate_->didConnect(peripheral(path));
    wanted_.erase(path);
    delegate_->didFailToConnect(peripheral(path), errorText(reply));
  });
}

void BluezLowEnergyCentral::discoverServices(const std::string& identifier) {
  const auto path = QString::fromStdString(identifier);
  if (mirror_.property(path, bluez::deviceInterface, "ServicesResolved").value_or(false).toBool()) {
    QTimer::singleShot(0, this, [this, path] { reportServices(path); });
  } else {
    awaitingServices_.insert(path);
  }
}

void BluezLowEnergyCentral::reportServices(const QString& path) {
  if (!delegate_) return;
  std::vector<LowEnergyService> services;
  bool batteryExported = false;
  for (const auto& found : children(bluez::gattServiceInterface, "Device", path)) {
    const auto uuid = mirror_.property(found, bluez::gattServiceInterface, "UUID").value_or("").toString();
    batteryExported = batteryExported || uuid.compare(batteryServiceUUID, Qt::CaseInsensitive) == 0;
    services.push_back({found.toStdString(), uuid.toStdString()});
  }
  if (!batteryExported && mirror_.property(path, bluez::batteryInterface, "Percentage")) {
    services.push_back({(path + claimedBatteryService).toStdString(), batteryServiceUUID});
  }
  delegate_->didDiscoverServices(peripheral(path), services);
}

void BluezLowEnergyCentral::discoverCharacteristics(const std::string& identifier, const std::string& serviceID) {
  const auto path = QString::fromStdString(identifier), servicePath = QString::fromStdString(serviceID);
  QTimer::singleShot(0, this, [this, path, servicePath] {
    if (!delegate_) return;
    std::vector<LowEnergyCharacteristic> characteristics;
    for (const auto& found : children(bluez::gattCharacteristicInterface, "Service", servicePath))
      characteristics.push_back(characteristic(found));
    auto uuid =
        mirror_.property(servicePath, bluez::gattServiceInterface, "UUID").value_or("").toString().toStdString();
    if (servicePath == path + claimedBatteryService) {
      uuid = batteryServiceUUID;
      characteristics.push_back({(path + claimedBatteryLevel).toStdString(), batteryLevelUUID, std::nullopt, {}});
    }
    delegate_->didDiscoverCharacteristics(peripheral(path), {servicePath.toStdString(), uuid}, characteristics);
  });
}

void BluezLowEnergyCentral::readValue(const std::string& identifier, const std::string& characteristicID) {
  const auto path = QString::fromStdString(identifier), found = QString::fromStdString(characteristicID);
  if (found == path + claimedBatteryLevel) {
    QTimer::singleShot(0, this, [this, path, found] {
      if (!delegate_) return;
      LowEnergyCharacteristic level{found.toStdString(), batteryLevelUUID, std::nullopt, {}};
      const auto percentage = mirror_.property(path, bluez::batteryInterface, "Percentage");
      if (percentage) level.value = std::vector<std::uint8_t>{static_cast<std::uint8_t>(percentage->toUInt())};
      delegate_->didUpdateValue(peripheral(path), level,
                                percentage ? std::nullopt : std::optional<std::string>("no Battery1 level"));
    });
    return;
  }
  const auto flags =
      mirror_.property(found, bluez::gattCharacteristicInterface, "Flags").value_or(QStringList()).toStringList();
  if (!flags.contains("read")) {
    QTimer::singleShot(0, this, [this, path, found] {
      if (delegate_) delegate_->didUpdateValue(peripheral(path), characteristic(found), "not readable");
    });
    return;
  }
  auto read = call(found, bluez::gattCharacteristicInterface, "ReadValue");
  read << QVariantMap();
  callAsync(read, [this, path, found](const QDBusMessage& reply) {
    if (!delegate_) return;
    auto answer = characteristic(found);
    if (reply.type() == QDBusMessage::ErrorMessage) {
      answer.value.reset();
      return delegate_->didUpdateValue(peripheral(path), answer, errorText(reply));
    }
    const auto bytes = reply.arguments().value(0).toByteArray();
    answer.value = std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    delegate_->didUpdateValue(peripheral(path), answer, std::nullopt);
  });
}

LowEnergyPeripheral BluezLowEnergyCentral::peripheral(const QString& path) const {
  LowEnergyPeripheral found{path.toStdString(), std::nullopt};
  if (auto name = mirror_.property(path, bluez::deviceInterface, "Name")) found.name = name->toString().toStdString();
  return found;
}

LowEnergyCharacteristic BluezLowEnergyCentral::characteristic(const QString& path) const {
  LowEnergyCharacteristic found{
      path.toStdString(),
      mirror_.property(path, bluez::gattCharacteristicInterface, "UUID").value_or("").toString().toStdString(),
      std::nullopt,
      {}};
  // BlueZ keeps the last value read; empty before the first read.
  const auto value =
      mirror_.property(path, bluez::gattCharacteristicInterface, "Value").value_or(QByteArray()).toByteArray();
  if (!value.isEmpty()) found.value = std::vector<std::uint8_t>(value.begin(), value.end());
  for (const auto& descriptor : children(bluez::gattDescriptorInterface, "Characteristic", path))
    found.descriptors.push_back(
        mirror_.property(descriptor, bluez::gattDescriptorInterface, "UUID").value_or("").toString().toStdString());
  return found;
}

std::vector<QString> BluezLowEnergyCentral::children(const QString& interface, const char* owner,
                                                     const QString& path) const {
  std::vector<QString> found;
  for (const auto& child : mirror_.paths(interface)) {
    if (pathText(mirror_.property(child, interface, owner).value_or(QVariant())) == path) found.push_back(child);
  }
  return found;
}

void BluezLowEnergyCentral::interfacesAdded(const QDBusMessage& message) {
  const auto [path, interfaces] = mirror_.interfacesAdded(message);
  if (interfaces.contains(bluez::adapterInterface)) reportState();
  // A device that appears while discovering has just advertised.
  if (delegate_ && !scanning_.empty() && interfaces.contains(bluez::deviceInterface))
    delegate_->didDiscover(peripheral(path));
}

void BluezLowEnergyCentral::interfacesRemoved(const QDBusMessage& message) { mirror_.interfacesRemoved(message); }

void BluezLowEnergyCentral::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                              const QStringList& invalidated, const QDBusMessage& message) {
  const QString path = message.path();
  mirror_.updateProperties(path, interface, changed, invalidated, QString());
  if (!delegate_) return;
  if (interface == bluez::adapterInterface && changed.contains("Powered")) {
    // Scanning ends with the power; it starts again when the power returns.
    if (!changed.value("Powered").toBool()) scanning_.erase(path);
    return reportState();
  }
  if (interface != bluez::deviceInterface) return;
  if (changed.contains("RSSI") && !scanning_.empty()) delegate_->didDiscover(peripheral(path));
  if (!wanted_.contains(path)) return;
  if (changed.contains("Connected")) {
    if (changed.value("Connected").toBool()) {
      delegate_->didConnect(peripheral(path));
    } else {
      wanted_.erase(path);
      awaitingServices_.erase(path);
      delegate_->didDisconnectPeripheral(peripheral(path), "none");
    }
  }
  if (changed.value("ServicesResolved").toBool() && awaitingServices_.erase(path)) reportServices(path);
}

} // namespace lb
