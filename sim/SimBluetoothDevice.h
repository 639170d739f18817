#pragma once

#include "ports/BluetoothDevice.h"

#include <mutex>

namespace lb {

// A simulated paired device. Core sees it through BluetoothDevice; the
// world changes it through SimBluetoothWorld.
class SimBluetoothDevice final : public BluetoothDevice {
public:
  SimBluetoothDevice(std::string address, std::optional<std::string> name, std::uint32_t majorClass)
      : address_(std::move(address)), majorClass_(majorClass), name_(std::move(name)) {}

  std::string addressString() const override { return address_; }
  std::optional<std::string> name() const override {
    std::lock_guard lock(mutex_);
    return name_;
  }
  bool isConnected() const override {
    std::lock_guard lock(mutex_);
    return connected_;
  }
  std::uint32_t majorDeviceClass() const override { return majorClass_; }

private:
  friend class SimBluetoothWorld;

  const std::string address_;
  const std::uint32_t majorClass_;
  mutable std::mutex mutex_;
  std::optional<std::string> name_;
  bool connected_ = false;
};

} // namespace lb
