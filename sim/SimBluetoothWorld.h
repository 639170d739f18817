#pragma once

#include "ports/Bluetooth.h"
#include "ports/EventLoop.h"
#include "sim/SimBluetoothDevice.h"

#include <map>
#include <memory>
#include <mutex>

namespace lb {

// The simulated Bluetooth world: which devices are paired and connected.
// Tests and the demo act through it ("the headset powers on"); core sees it
// only through SimBluetooth. Notifications reach their handlers on the main
// queue, as the platform delivers them.
class SimBluetoothWorld {
public:
  explicit SimBluetoothWorld(EventLoop& loop) : loop_(loop) {}

  // Pairs a device; the major class 4 is audio, 5 a peripheral, and the
  // minor class says which (6 headphones, 1 a headset; 16 a keyboard).
  SimBluetoothDevice& addDevice(const std::string& address, std::optional<std::string> name, std::uint32_t majorClass,
                                std::uint32_t minorClass = 0);
  // Unpairs it: lookups find nothing from now on.
  void removeDevice(const std::string& address);
  // Stops or starts the Bluetooth service: while it is stopped, no device
  // is found or paired.
  void setServiceRunning(bool running);
  bool isServiceRunning() const;
  // Connects or disconnects the device, with the notifications that follow.
  void setConnected(const std::string& address, bool connected);

  // The port's side.
  std::shared_ptr<SimBluetoothDevice> device(const std::string& address) const;
  std::unique_ptr<NotificationRegistration> subscribe(std::optional<std::string> address, bool connects,
                                                      Bluetooth::NotificationHandler handler);
  std::size_t subscriptionCount() const;
  std::vector<PairedDevice> pairedDevices() const;
  // Told at once, on the thread that pairs or removes.
  std::unique_ptr<NotificationRegistration> registerForPairingChanges(std::function<void()> handler) {
    return pairingListeners_.add(std::move(handler));
  }

private:
  struct Subscription {
    std::optional<std::string> address; // none: every device
    bool connects;
    Bluetooth::NotificationHandler handler;
  };
  class Registration;

  EventLoop& loop_;
  mutable std::mutex mutex_;
  std::map<std::string, std::shared_ptr<SimBluetoothDevice>> devices_;
  std::map<std::uint64_t, Subscription> subscriptions_;
  std::uint64_t nextSubscription_ = 0;
  bool serviceRunning_ = true;
  Listeners<> pairingListeners_;
};

} // namespace lb
