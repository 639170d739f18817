#pragma once

#include "ports/Bluetooth.h"
#include "sim/SimBluetoothWorld.h"

namespace lb {

// The Bluetooth port over the simulated world.
class SimBluetooth final : public Bluetooth {
public:
  explicit SimBluetooth(SimBluetoothWorld& world) : world_(world) {}

  std::shared_ptr<BluetoothDevice> deviceWithAddressString(const std::string& address) override {
    return world_.isServiceRunning() ? world_.device(address) : nullptr;
  }
  std::unique_ptr<NotificationRegistration> registerForConnectNotifications(NotificationHandler handler) override {
    return world_.subscribe(std::nullopt, true, std::move(handler));
  }
  std::unique_ptr<NotificationRegistration> registerForDisconnectNotification(const BluetoothDevice& device,
                                                                              NotificationHandler handler) override {
    return world_.subscribe(device.addressString(), false, std::move(handler));
  }
  bool isAvailable() const override { return world_.isServiceRunning(); }
  std::vector<PairedDevice> pairedDevices() const override { return world_.pairedDevices(); }
  std::unique_ptr<NotificationRegistration> registerForPairingChanges(std::function<void()> handler) override {
    return world_.registerForPairingChanges(std::move(handler));
  }

private:
  SimBluetoothWorld& world_;
};

} // namespace lb
