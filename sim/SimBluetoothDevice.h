#pragma once

#include "ports/BluetoothDevice.h"
#include "ports/EventLoop.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace lb {

class SimBluetoothWorld;

// What a simulated blocking call sees: the world to change, the loop whose
// worker sleeps in virtual time, and the page timeout asked for.
struct SimCallContext {
  SimBluetoothWorld& world;
  EventLoop& loop;
  std::string address;
  std::optional<std::uint16_t> pageTimeout;
};

// How a device answers a connect or disconnect; see sim/SimBehaviours.h.
using SimBehaviour = std::function<IOReturn(SimCallContext&)>;

// A simulated paired device. Core sees it through BluetoothDevice; the
// world changes it through SimBluetoothWorld.
class SimBluetoothDevice final : public BluetoothDevice {
public:
  SimBluetoothDevice(SimBluetoothWorld& world, EventLoop& loop, std::string address, std::optional<std::string> name,
                     std::uint32_t majorClass, std::uint32_t minorClass = 0);

  std::string addressString() const override { return address_; }
  std::optional<std::string> name() const override;
  bool isConnected() const override;
  std::uint32_t majorDeviceClass() const override { return majorClass_; }
  std::uint32_t classOfDevice() const override { return majorClass_ << 8 | minorClass_ << 2; }
  IOReturn openConnection(std::optional<std::uint16_t> pageTimeout = std::nullopt) override;
  IOReturn closeConnection() override;
  std::optional<SettingsValue> batteryProperty(const std::string& keyString) const override;

  // The world's side.
  void setBatteryProperty(const std::string& keyString, std::optional<SettingsValue> value);
  void setConnectBehaviour(SimBehaviour behaviour);
  // The page timeouts of every connect call so far (none: the default).
  std::vector<std::optional<std::uint16_t>> connectCalls() const;
  int disconnectCalls() const;

private:
  friend class SimBluetoothWorld;

  SimBluetoothWorld& world_;
  EventLoop& loop_;
  const std::string address_;
  const std::uint32_t majorClass_;
  const std::uint32_t minorClass_;
  mutable std::mutex mutex_;
  std::optional<std::string> name_;
  bool connected_ = false;
  std::map<std::string, SettingsValue> battery_;
  // Shared, so that a call runs the behaviour itself, outside the lock, and
  // a behaviour that counts its calls keeps its count.
  std::shared_ptr<SimBehaviour> connect_;
  const std::shared_ptr<SimBehaviour> disconnect_;
  std::vector<std::optional<std::uint16_t>> connectCalls_;
  int disconnectCalls_ = 0;
};

} // namespace lb
