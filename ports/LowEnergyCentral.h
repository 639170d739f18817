#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lb {

// A Bluetooth Low Energy peripheral as the central sees it: an identifier
// that stays the same while the program runs, and its advertised name.
struct LowEnergyPeripheral {
  std::string identifier;
  std::optional<std::string> name;
};

struct LowEnergyService {
  std::string identifier;
  std::string uuid;
};

struct LowEnergyCharacteristic {
  std::string identifier;
  std::string uuid;
  // The value read last; none before the first read.
  std::optional<std::vector<std::uint8_t>> value;
  std::vector<std::string> descriptors; // their UUIDs
};

// What the central reports, on the main thread, in the order it happens.
class LowEnergyCentralDelegate {
public:
  virtual ~LowEnergyCentralDelegate() = default;
  virtual void centralManagerDidUpdateState(bool poweredOn) = 0;
  // An advertising peripheral; the same one may be reported again.
  virtual void didDiscover(const LowEnergyPeripheral& peripheral) = 0;
  virtual void didConnect(const LowEnergyPeripheral& peripheral) = 0;
  virtual void didFailToConnect(const LowEnergyPeripheral& peripheral, const std::string& error) = 0;
  virtual void didDisconnectPeripheral(const LowEnergyPeripheral& peripheral, const std::string& error) = 0;
  virtual void didDiscoverServices(const LowEnergyPeripheral& peripheral,
                                   const std::vector<LowEnergyService>& services) = 0;
  virtual void didDiscoverCharacteristics(const LowEnergyPeripheral& peripheral, const LowEnergyService& service,
                                          const std::vector<LowEnergyCharacteristic>& characteristics) = 0;
  // A read's answer: the characteristic with its value, or the error.
  virtual void didUpdateValue(const LowEnergyPeripheral& peripheral, const LowEnergyCharacteristic& characteristic,
                              const std::optional<std::string>& error) = 0;
};

// The Low Energy central role: scanning, connecting, walking a peripheral's
// GATT services and reading its characteristics. Every request answers
// later, through the delegate. Main thread only.
class LowEnergyCentral {
public:
  virtual ~LowEnergyCentral() = default;
  // Whom to tell; the state follows as soon as it is known.
  virtual void setDelegate(LowEnergyCentralDelegate* delegate) = 0;
  virtual void scanForPeripherals() = 0;
  virtual void stopScan() = 0;
  virtual void connect(const std::string& peripheral) = 0;
  virtual void discoverServices(const std::string& peripheral) = 0;
  virtual void discoverCharacteristics(const std::string& peripheral, const std::string& service) = 0;
  virtual void readValue(const std::string& peripheral, const std::string& characteristic) = 0;
};

} // namespace lb
