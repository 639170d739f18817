#pragma once

#include "linux/bluez/BluezMirror.h"
#include "ports/Bluetooth.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>

#include <chrono>
#include <map>
#include <memory>

class QDBusMessage;
class QDBusServiceWatcher;

namespace lb {

// The Bluetooth port over BlueZ on a D-Bus bus. It mirrors BlueZ's objects
// (GetManagedObjects once, then InterfacesAdded, InterfacesRemoved and
// PropertiesChanged) and answers every query from the mirror: idle, it sends
// nothing. When bluetoothd leaves the bus, lookups find nothing; when it
// returns, or answers again after not answering, the mirror is rebuilt.
// Lives on the main thread.
class BluezBluetooth final : public QObject, public Bluetooth {
  Q_OBJECT

public:
  explicit BluezBluetooth(QDBusConnection bus);
  ~BluezBluetooth() override;

  // Lookups take the address in either letter case, with colons or hyphens.
  std::shared_ptr<BluetoothDevice> deviceWithAddressString(const std::string& address) override;
  std::unique_ptr<NotificationRegistration> registerForConnectNotifications(NotificationHandler handler) override;
  std::unique_ptr<NotificationRegistration> registerForDisconnectNotification(const BluetoothDevice& device,
                                                                              NotificationHandler handler) override;
  bool isAvailable() const override { return available_; }
  std::vector<PairedDevice> pairedDevices() const override;
  std::unique_ptr<NotificationRegistration> registerForPairingChanges(std::function<void()> handler) override {
    return pairingListeners_.add(std::move(handler));
  }

private slots:
  void interfacesAdded(const QDBusMessage& message);
  void interfacesRemoved(const QDBusMessage& message);
  void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                         const QDBusMessage& message);

private:
  struct Subscription {
    std::optional<QString> path; // none: every device
    bool connects;
    NotificationHandler handler;
  };
  class Registration;

  void rebuild(const BluezObjectMap& objects);
  void reload();
  // Whether the error is one of a bluetoothd that does not answer, and so
  // another reload is on its way.
  bool retryIfStalled(const QString& errorName);
  static constexpr std::chrono::milliseconds firstRetry{1000};

  QDBusConnection bus_;
  std::shared_ptr<BluezMirror> mirror_ = std::make_shared<BluezMirror>();
  QDBusServiceWatcher* watcher_;
  std::map<std::uint64_t, Subscription> subscriptions_;
  std::uint64_t nextSubscription_ = 0;
  Listeners<> pairingListeners_;
  std::chrono::milliseconds retry_ = firstRetry;
  bool available_ = false; // until BlueZ's objects are read
};

} // namespace lb
