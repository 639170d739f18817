#include "sim/SimBluetoothWorld.h"

#include "foundation/BluetoothAddress.h"

namespace lb {

class SimBluetoothWorld::Registration final : public NotificationRegistration {
public:
  Registration(SimBluetoothWorld& world, std::uint64_t id) : world_(world), id_(id) {}
  ~Registration() override {
    std::lock_guard lock(world_.mutex_);
    world_.subscriptions_.erase(id_);
  }

private:
  SimBluetoothWorld& world_;
  std::uint64_t id_;
};

SimBluetoothDevice& SimBluetoothWorld::addDevice(const std::string& address, std::optional<std::string> name,
                                                 std::uint32_t majorClass, std::uint32_t minorClass) {
  auto device = std::make_shared<SimBluetoothDevice>(*this, loop_, address, std::move(name), majorClass, minorClass);
  {
    std::lock_guard lock(mutex_);
    devices_[address] = device;
  }
  pairingListeners_.notify();
  return *device;
}

void SimBluetoothWorld::removeDevice(const std::string& address) {
  {
    std::lock_guard lock(mutex_);
    devices_.erase(address);
  }
  pairingListeners_.notify();
}

void SimBluetoothWorld::setServiceRunning(bool running) {
  {
    std::lock_guard lock(mutex_);
    serviceRunning_ = running;
  }
  pairingListeners_.notify();
}

bool SimBluetoothWorld::isServiceRunning() const {
  std::lock_guard lock(mutex_);
  return serviceRunning_;
}

void SimBluetoothWorld::setConnected(const std::string& address, bool connected) {
  auto found = device(address);
  if (!found) return;
  {
    std::lock_guard lock(found->mutex_);
    if (found->connected_ == connected) return;
    found->connected_ = connected;
  }
  std::vector<Bluetooth::NotificationHandler> handlers;
  {
    std::lock_guard lock(mutex_);
    for (const auto& [id, subscription] : subscriptions_) {
      if (subscription.connects == connected && (!subscription.address || *subscription.address == address)) {
        handlers.push_back(subscription.handler);
      }
    }
  }
  BluetoothNotification notification{(connected ? "connected " : "disconnected ") + address};
  for (auto& handler : handlers) {
    loop_.post([handler, notification, found] { handler(notification, found); });
  }
}

std::shared_ptr<SimBluetoothDevice> SimBluetoothWorld::device(const std::string& address) const {
  std::lock_guard lock(mutex_);
  // As BlueZ, in any spelling of the address.
  auto found = devices_.find(address);
  if (found != devices_.end()) return found->second;
  for (const auto& [known, device] : devices_) {
    if (sameBluetoothAddress(known, address)) return device;
  }
  return nullptr;
}

std::unique_ptr<NotificationRegistration> SimBluetoothWorld::subscribe(std::optional<std::string> address,
                                                                       bool connects,
                                                                       Bluetooth::NotificationHandler handler) {
  std::lock_guard lock(mutex_);
  auto id = nextSubscription_++;
  subscriptions_.emplace(id, Subscription{std::move(address), connects, std::move(handler)});
  return std::make_unique<Registration>(*this, id);
}

std::vector<PairedDevice> SimBluetoothWorld::pairedDevices() const {
  std::lock_guard lock(mutex_);
  std::vector<PairedDevice> paired;
  if (!serviceRunning_) return paired;
  for (const auto& [address, device] : devices_)
    paired.push_back({device->name().value_or(address), address, device->classOfDevice()});
  return paired;
}

std::size_t SimBluetoothWorld::subscriptionCount() const {
  std::lock_guard lock(mutex_);
  return subscriptions_.size();
}

} // namespace lb
