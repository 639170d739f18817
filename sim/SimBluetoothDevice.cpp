#include "sim/SimBluetoothDevice.h"

#include "sim/SimBehaviours.h"
#include "sim/SimBluetoothWorld.h"

namespace lb {

SimBluetoothDevice::SimBluetoothDevice(SimBluetoothWorld& world, EventLoop& loop, std::string address,
                                       std::optional<std::string> name, std::uint32_t majorClass,
                                       std::uint32_t minorClass)
    : world_(world), loop_(loop), address_(std::move(address)), majorClass_(majorClass), minorClass_(minorClass),
      name_(std::move(name)), connect_(std::make_shared<SimBehaviour>(sim::succeedsAfter(1.0))),
      disconnect_(std::make_shared<SimBehaviour>(sim::disconnectsAfter(0.2))) {}

std::optional<std::string> SimBluetoothDevice::name() const {
  std::lock_guard lock(mutex_);
  return name_;
}

bool SimBluetoothDevice::isConnected() const {
  std::lock_guard lock(mutex_);
  return connected_;
}

IOReturn SimBluetoothDevice::openConnection(std::optional<std::uint16_t> pageTimeout) {
  std::shared_ptr<SimBehaviour> behaviour;
  {
    std::lock_guard lock(mutex_);
    connectCalls_.push_back(pageTimeout);
    behaviour = connect_;
  }
  SimCallContext call{world_, loop_, address_, pageTimeout};
  return (*behaviour)(call);
}

IOReturn SimBluetoothDevice::closeConnection() {
  std::shared_ptr<SimBehaviour> behaviour;
  {
    std::lock_guard lock(mutex_);
    ++disconnectCalls_;
    behaviour = disconnect_;
  }
  SimCallContext call{world_, loop_, address_, std::nullopt};
  return (*behaviour)(call);
}

std::optional<SettingsValue> SimBluetoothDevice::batteryProperty(const std::string& keyString) const {
  std::lock_guard lock(mutex_);
  auto found = battery_.find(keyString);
  if (found == battery_.end()) return std::nullopt;
  return found->second;
}

void SimBluetoothDevice::setBatteryProperty(const std::string& keyString, std::optional<SettingsValue> value) {
  std::lock_guard lock(mutex_);
  if (value) battery_.insert_or_assign(keyString, *value);
  else battery_.erase(keyString);
}

void SimBluetoothDevice::setConnectBehaviour(SimBehaviour behaviour) {
  std::lock_guard lock(mutex_);
  connect_ = std::make_shared<SimBehaviour>(std::move(behaviour));
}

std::vector<std::optional<std::uint16_t>> SimBluetoothDevice::connectCalls() const {
  std::lock_guard lock(mutex_);
  return connectCalls_;
}

int SimBluetoothDevice::disconnectCalls() const {
  std::lock_guard lock(mutex_);
  return disconnectCalls_;
}

} // namespace lb
