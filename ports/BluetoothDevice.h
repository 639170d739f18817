#pragma once

#include "foundation/SettingsValue.h"
#include "ports/IOReturn.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lb {

// A paired Bluetooth classic device as the platform knows it. Queries may
// come from the main thread or a worker.
class BluetoothDevice {
public:
  virtual ~BluetoothDevice() = default;

  // The address as the platform writes it, e.g. "00-11-22-33-44-55".
  virtual std::string addressString() const = 0;
  // The name the user sees, if the platform has one.
  virtual std::optional<std::string> name() const = 0;
  virtual bool isConnected() const = 0;
  // The major device class of the Class of Device (4 is audio/video). A
  // device that reports no class but offers an audio sink profile is audio.
  virtual std::uint32_t majorDeviceClass() const = 0;
  // The whole Class of Device (major and minor class); 0 when not known.
  virtual std::uint32_t classOfDevice() const { return majorDeviceClass() << 8; }

  // Blocking calls, made from a worker thread. The page timeout counts
  // baseband slots of 0.625 ms; without one the platform's default applies.
  virtual IOReturn openConnection(std::optional<std::uint16_t> pageTimeout = std::nullopt) = 0;
  virtual IOReturn closeConnection() = 0;

  // A battery level the device object offers under a key such as
  // "batteryPercentSingle"; none when it has no such property.
  virtual std::optional<SettingsValue> batteryProperty(const std::string& /*keyString*/) const { return std::nullopt; }

  std::string nameOrAddress() const { return name().value_or(addressString()); }

  // Two objects for the same address are the same device.
  bool operator==(const BluetoothDevice& other) const { return addressString() == other.addressString(); }

  std::string description() const {
    return "<BluetoothDevice " + addressString() + (name() ? " \"" + *name() + "\">" : ">");
  }
};

} // namespace lb
