#pragma once

#include "foundation/Listeners.h"
#include "ports/BluetoothDevice.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lb {

// What the platform tells with a connect or disconnect notification.
struct BluetoothNotification {
  std::string what; // for log lines: which event, from where

  std::string description() const { return "<BluetoothNotification " + what + ">"; }
};

struct PairedDevice {
  std::string name;
  std::string address;
  std::uint32_t classOfDevice = 0; // 0: not known
};

// The platform's Bluetooth classic devices. Notifications arrive on the main
// thread; lookups may come from any thread.
class Bluetooth {
public:
  using NotificationHandler = std::function<void(const BluetoothNotification&, std::shared_ptr<BluetoothDevice>)>;

  virtual ~Bluetooth() = default;

  // The device with this address, or nothing if the platform knows none.
  virtual std::shared_ptr<BluetoothDevice> deviceWithAddressString(const std::string& address) = 0;

  // Every device's connections.
  virtual std::unique_ptr<NotificationRegistration> registerForConnectNotifications(NotificationHandler handler) = 0;

  // One device's disconnection.
  virtual std::unique_ptr<NotificationRegistration> registerForDisconnectNotification(const BluetoothDevice& device,
                                                                                      NotificationHandler handler) = 0;

  // Whether the system's Bluetooth service answers. While it does not, no
  // device is found or paired; the pairing listeners are told when it comes
  // and goes.
  virtual bool isAvailable() const = 0;
  // The devices the user has paired, for choosing one to add.
  virtual std::vector<PairedDevice> pairedDevices() const = 0;
  // Told on the main thread whenever the paired devices may have changed: a
  // device paired, removed or renamed.
  virtual std::unique_ptr<NotificationRegistration> registerForPairingChanges(std::function<void()> handler) = 0;
};

} // namespace lb
