#pragma once

#include "ports/BluetoothDevice.h"

#include <memory>
#include <optional>
#include <string>

namespace lb {

// What the audio side reads of a device setting to find its audio device.
class BluetoothMatchable {
public:
  virtual ~BluetoothMatchable() = default;
  virtual std::shared_ptr<BluetoothDevice> device() const = 0;
  virtual std::optional<std::string> deviceName() const = 0;
  virtual std::string description() const = 0;
};

} // namespace lb
