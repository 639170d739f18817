#include "linux/battery/UPowerRegistry.h"

#include "foundation/BluetoothAddress.h"
#include "foundation/PXRLog.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusServiceWatcher>

#include <cctype>
#include <cmath>

namespace lb {

namespace {
constexpr const char* service = "org.freedesktop.UPower";
constexpr const char* root = "/org/freedesktop/UPower";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
} // namespace

UPowerRegistry::UPowerRegistry(QDBusConnection bus) : bus_(std::move(bus)) {
  bus_.connect(service, root, service, "DeviceAdded", this, SLOT(deviceAdded(QDBusMessage)));
  bus_.connect(service, root, service, "DeviceRemoved", this, SLOT(deviceRemoved(QDBusMessage)));
  bus_.connect(service, QString(), properties, "PropertiesChanged", this,
               SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));
  watcher_ = new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { devices_.clear(); });
  connect(watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { load(); });
  load();
}

UPowerRegistry::~UPowerRegistry() = default;

// Once at start and when UPower returns, bounded: battery levels are known
// before the first icon is drawn. Without UPower the registry is empty.
void UPowerRegistry::load() {
  devices_.clear();
  auto call = QDBusMessage::createMethodCall(service, root, service, "EnumerateDevices");
  QDBusReply<QList<QDBusObjectPath>> reply = bus_.call(call, QDBus::Block, 3000);
  if (!reply.isValid()) return;
  for (const auto& path : reply.value()) read(path.path());
}

void UPowerRegistry::read(const QString& path) {
  auto call = QDBusMessage::createMethodCall(service, path, properties, "GetAll");
  call << QString(entryName);
  QDBusReply<QVariantMap> reply = bus_.call(call, QDBus::Block, 3000);
  if (reply.isValid()) devices_[path] = reply.value();
}

void UPowerRegistry::deviceAdded(const QDBusMessage& message) {
  if (message.arguments().size() == 1) read(message.arguments()[0].value<QDBusObjectPath>().path());
}

void UPowerRegistry::deviceRemoved(const QDBusMessage& message) {
  if (message.arguments().size() == 1) devices_.erase(message.arguments()[0].value<QDBusObjectPath>().path());
}

void UPowerRegistry::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                       const QStringList& invalidated, const QDBusMessage& message) {
  auto device = devices_.find(message.path());
  if (interface != entryName || device == devices_.end()) return;
  for (auto it = changed.begin(); it != changed.end(); ++it) device->second[it.key()] = it.value();
  for (const auto& name : invalidated) device->second.remove(name);
}

std::vector<BatterySources::RegistryEntry> UPowerRegistry::entries() const {
  std::vector<BatterySources::RegistryEntry> result;
  for (const auto& [path, device] : devices_) result.push_back({entryName, path.toStdString(), propertiesOf(device)});
  return result;
}

SettingsValue::Dictionary UPowerRegistry::propertiesOf(const QVariantMap& upower) {
  SettingsValue::Dictionary result;
  // "/org/bluez/hci0/dev_aa_bb_…" or "hid-aa:bb:…-battery"
  if (auto address = BluetoothAddress::findIn(upower.value("NativePath").toString().toStdString())) {
    result.emplace("DeviceAddress", address->toString());
  }
  if (upower.contains("Serial")) result.emplace("SerialNumber", upower.value("Serial").toString().toStdString());
  if (upower.contains("Model")) result.emplace("Product", upower.value("Model").toString().toStdString());
  if (upower.contains("Percentage")) {
    result.emplace("BatteryPercentSingle",
                   static_cast<std::int64_t>(std::floor(upower.value("Percentage").toDouble())));
  }
  return result;
}

} // namespace lb
