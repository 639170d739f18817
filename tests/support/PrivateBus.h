#pragma once

#include "tests/support/TemporaryDirectory.h"
#include "tests/support/Wait.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QVariantList>

#include <functional>
#include <memory>
#include <string>

namespace lb::test {

// A private D-Bus daemon of the system type (or the session type) on a
// socket in a temporary folder, with python-dbusmock models of system
// services on it. Everything it starts, it stops.
class PrivateBus {
public:
  enum class Kind { system, session };
  explicit PrivateBus(Kind kind = Kind::system);
  ~PrivateBus();

  // Empty when the bus runs; otherwise why the tests that need it skip.
  const std::string& skipReason() const { return skipReason_; }
  const std::string& address() const { return address_; }

  // A fresh connection to the bus, for the code under test or for driving
  // the models.
  QDBusConnection connect(const QString& name);

  // Starts bluetoothd's stand-in (our BlueZ template) and waits for its name.
  bool startBluez();
  // The BlueZ model's object of a device, "/org/bluez/hci0/dev_00_1B_…".
  static QString bluezDevicePath(std::string address);
  // Whether the BlueZ model has the device connected.
  bool bluezConnected(const std::string& address);
  // Kills it, as a crash of bluetoothd would.
  void killBluez();
  // Stops it (SIGSTOP) or lets it go on: a stopped daemon keeps its name
  // and answers nothing.
  void pauseBluez(bool paused);

  // A method call on the BlueZ model; the reply (or error) message.
  QDBusMessage bluez(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments = {});

  // The tray items registered with it: each a bus name.
  QStringList statusNotifierItems();

  // Starts the desktop portal's model with GlobalShortcuts.
  bool startPortal();
  // A method of its test interface: Bound() or Activate(id).
  QDBusMessage portal(const QString& method, const QVariantList& arguments = {});

  // Starts python3-dbusmock's notification daemon (on a session bus).
  bool startNotifications();
  // The arguments of every Notify call it had, in order.
  QList<QVariantList> notificationCalls();

  // Starts python3-dbusmock's UPower model and waits for its name.
  bool startUPower();
  // A method of the UPower model's mock interface (AddDischargingBattery,
  // SetDeviceProperties, RemoveDevice, or on a device's path AddProperty);
  // the reply.
  QDBusMessage upower(const QString& method, const QVariantList& arguments = {},
                      const QString& path = "/org/freedesktop/UPower");

  // Counts the messages on the bus that match a rule ("sender=':1.5'",
  // "type='method_call',member='Connect'"), from now on, by watching the bus
  // with dbus-monitor.
  class MessageCounter {
  public:
    MessageCounter(const PrivateBus& bus, const QString& rule);
    ~MessageCounter();
    // Whether the monitor watches; false if it could not start.
    bool started() const { return started_; }
    // How many have been seen so far.
    int count();

  private:
    QProcess monitor_;
    bool started_ = false;
    int count_ = 0;
    QByteArray pending_;
  };

private:
  TemporaryDirectory folder_;
  std::string address_;
  std::string skipReason_;
  std::unique_ptr<QProcess> daemon_;
  // Debian's python3 with these arguments, serving `service` on this bus.
  std::unique_ptr<QProcess> startModel(const QStringList& arguments, const QString& service, const std::string& what);
  // A method call on the bus, waited for; the reply (or error) message.
  QDBusMessage call(const QString& service, const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments);

  std::unique_ptr<QProcess> bluez_;
  std::unique_ptr<QProcess> upower_;
  std::unique_ptr<QProcess> notifications_;
  std::unique_ptr<QProcess> portal_;
  std::unique_ptr<QDBusConnection> control_;
};

} // namespace lb::test
