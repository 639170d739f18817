#include "linux/bluez/BluezBluetooth.h"

#include "foundation/BluetoothAddress.h"
#include "foundation/PXRLog.h"
#include "linux/bluez/BluezDevice.h"
#include "linux/bluez/BluezErrors.h"
#include "linux/bluez/BluezNames.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace lb {

namespace {
constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";
} // namespace

class BluezBluetooth::Registration final : public NotificationRegistration {
public:
  Registration(BluezBluetooth& owner, std::uint64_t id) : owner_(owner), id_(id) {}
  ~Registration() override { owner_.subscriptions_.erase(id_); }

private:
  BluezBluetooth& owner_;
  std::uint64_t id_;
};

BluezBluetooth::BluezBluetooth(QDBusConnection bus) : bus_(std::move(bus)) {
  BluezMirror::registerTypes();

  // The object-manager signals arrive as messages and are read here: Qt
  // refuses slots whose parameters are these D-Bus types.
  bus_.connect(bluez::service, "/", objectManager, "InterfacesAdded", this, SLOT(interfacesAdded(QDBusMessage)));
  bus_.connect(bluez::service, "/", objectManager, "InterfacesRemoved", this, SLOT(interfacesRemoved(QDBusMessage)));
  bus_.connect(bluez::service, QString(), "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
               SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));

  watcher_ = new QDBusServiceWatcher(bluez::service, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
    mirror_->clear();
    available_ = false;
    pairingListeners_.notify();
    PXR_LOG_ERROR("BlueZ left the bus: no Bluetooth devices until it returns.");
  });
  connect(watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
    available_ = true; // its objects follow as they are announced, and with the reload
    pairingListeners_.notify();
    reload();
  });

  // Once, at start, bounded: the devices are known before the first lookup.
  auto call = QDBusMessage::createMethodCall(bluez::service, "/", objectManager, "GetManagedObjects");
  QDBusReply<BluezObjectMap> reply = bus_.call(call, QDBus::Block, 3000);
  if (reply.isValid()) {
    rebuild(reply.value());
  } else if (!retryIfStalled(reply.error().name())) {
    PXR_LOG_ERROR("BlueZ is not available (" + reply.error().name().toStdString() +
                  "); Bluetooth devices appear when bluetoothd starts.");
  }
}

// A bluetoothd that is stopped or busy keeps its bus name, so no new owner
// will say when it is back: it is asked again, at growing intervals, until
// it answers. One that left the bus is awaited by the watcher instead.
bool BluezBluetooth::retryIfStalled(const QString& errorName) {
  if (errorName != "org.freedesktop.DBus.Error.NoReply" && errorName != "org.freedesktop.DBus.Error.Timeout" &&
      errorName != "org.freedesktop.DBus.Error.TimedOut") {
    return false;
  }
  available_ = false;
  if (retry_ == firstRetry) {
    PXR_LOG_ERROR("BlueZ does not answer (" + errorName.toStdString() +
                  "); Lanternbud asks again at growing intervals, and the devices appear when it answers.");
  }
  QTimer::singleShot(retry_, this, [this] { reload(); });
  retry_ = std::min<std::chrono::milliseconds>(retry_ * 2, std::chrono::seconds(30));
  return true;
}

BluezBluetooth::~BluezBluetooth() = default;

void BluezBluetooth::rebuild(const BluezObjectMap& objects) {
  mirror_->replace(objects);
  available_ = true;
  pairingListeners_.notify();
}

void BluezBluetooth::reload() {
  auto call = QDBusMessage::createMethodCall(bluez::service, "/", objectManager, "GetManagedObjects");
  auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
    QDBusPendingReply<BluezObjectMap> reply = *finished;
    finished->deleteLater();
    if (!reply.isValid()) {
      retryIfStalled(reply.error().name());
      return;
    }
    if (std::exchange(retry_, firstRetry) != firstRetry) {
      PXR_LOG_ERROR("BlueZ answers again; its devices are read.");
    }
    rebuild(reply.value());
  });
}

void BluezBluetooth::interfacesAdded(const QDBusMessage& message) {
  if (mirror_->interfacesAdded(message).second.contains(bluez::deviceInterface)) pairingListeners_.notify();
}

void BluezBluetooth::interfacesRemoved(const QDBusMessage& message) {
  if (mirror_->interfacesRemoved(message).second.contains(bluez::deviceInterface)) pairingListeners_.notify();
}

void BluezBluetooth::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                       const QStringList& invalidated, const QDBusMessage& message) {
  const QString path = message.path();
  auto before = mirror_->updateProperties(path, interface, changed, invalidated, "Connected");
  if (interface != bluez::deviceInterface) return;
  if (changed.contains("Paired") || changed.contains("Alias") || changed.contains("Class")) pairingListeners_.notify();
  if (!changed.contains("Connected")) return;
  const bool connected = changed.value("Connected").toBool();
  if (before && before->toBool() == connected) return;

  auto address = mirror_->property(path, bluez::deviceInterface, "Address");
  if (!address) return;
  auto device = std::make_shared<BluezDevice>(mirror_, bus_, path, address->toString().toStdString());
  BluetoothNotification notification{(connected ? "Connected " : "Disconnected ") + path.toStdString()};
  std::vector<NotificationHandler> handlers;
  for (const auto& [id, subscription] : subscriptions_) {
    if (subscription.connects == connected && (!subscription.path || *subscription.path == path)) {
      handlers.push_back(subscription.handler);
    }
  }
  for (auto& handler : handlers) handler(notification, device);
}

std::shared_ptr<BluetoothDevice> BluezBluetooth::deviceWithAddressString(const std::string& address) {
  auto parsed = BluetoothAddress::parse(address);
  auto path = parsed ? mirror_->devicePath(*parsed) : std::nullopt;
  if (!path) return nullptr;
  auto stored = mirror_->property(*path, bluez::deviceInterface, "Address");
  if (!stored) return nullptr;
  return std::make_shared<BluezDevice>(mirror_, bus_, *path, stored->toString().toStdString());
}

std::unique_ptr<NotificationRegistration> BluezBluetooth::registerForConnectNotifications(NotificationHandler handler) {
  auto id = nextSubscription_++;
  subscriptions_.emplace(id, Subscription{std::nullopt, true, std::move(handler)});
  return std::make_unique<Registration>(*this, id);
}

std::unique_ptr<NotificationRegistration>
BluezBluetooth::registerForDisconnectNotification(const BluetoothDevice& device, NotificationHandler handler) {
  auto parsed = BluetoothAddress::parse(device.addressString());
  auto path = parsed ? mirror_->devicePath(*parsed) : std::nullopt;
  if (!path) return nullptr;
  auto id = nextSubscription_++;
  subscriptions_.emplace(id, Subscription{*path, false, std::move(handler)});
  return std::make_unique<Registration>(*this, id);
}

std::vector<PairedDevice> BluezBluetooth::pairedDevices() const {
  std::vector<PairedDevice> paired;
  for (const auto& path : mirror_->devicePaths()) {
    auto isPaired = mirror_->property(path, bluez::deviceInterface, "Paired");
    if (!isPaired || !isPaired->toBool()) continue;
    auto alias = mirror_->property(path, bluez::deviceInterface, "Alias");
    auto address = mirror_->property(path, bluez::deviceInterface, "Address");
    auto deviceClass = mirror_->property(path, bluez::deviceInterface, "Class");
    paired.push_back({alias ? alias->toString().toStdString() : "", address ? address->toString().toStdString() : "",
                      deviceClass ? deviceClass->toUInt() : 0});
  }
  return paired;
}

} // namespace lb
