#include "linux/battery/UPowerRegistry.h"

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

bool isHex(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

// Six hex pairs joined by one separator, the way paths and kernel names
// spell an address.
bool addressAt(const std::string& text, std::size_t start) {
  if (start + 17 > text.size()) return false;
  const char separator = text[start + 2];
  if (separator != ':' && separator != '_' && separator != '-') return false;
  for (std::size_t i = 0; i < 17; ++i) {
    const char c = text[start + i];
    if (i % 3 == 2 ? c != separator : !isHex(c)) return false;
  }
  return true;
}
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

std::string UPowerRegistry::addressIn(const std::string& nativePath) {
  for (std::size_t start = 0; start < nativePath.size(); ++start) {
    if (!addressAt(nativePath, start)) continue;
    std::string address = nativePath.substr(start, 17);
    for (std::size_t i = 0; i < address.size(); ++i) {
      address[i] = i % 3 == 2 ? ':' : static_cast<char>(std::toupper(static_cast<unsigned char>(address[i])));
    }
    return address;
  }
  return {};
}

SettingsValue::Dictionary UPowerRegistry::propertiesOf(const QVariantMap& upower) {
  SettingsValue::Dictionary result;
  if (auto address = addressIn(upower.value("NativePath").toString().toStdString()); !address.empty()) {
    result.emplace("DeviceAddress", address);
  }
  if (upower.contains("Serial")) result.emplace("SerialNumber", upower.value("Serial").toString().toStdString());
  if (upower.contains("Model")) result.emplace("Product", upower.value("Model").toString().toStdString());
  if (upower.contains("Percentage")) {
    result.emplace("BatteryPercentSingle", static_cast<std::int64_t>(std::floor(upower.value("Percentage").toDouble())));
  }
  return result;
}

} // namespace lb
