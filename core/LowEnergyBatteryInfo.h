#pragma once

#include "core/Tunables.h"
#include "foundation/Listeners.h"
#include "ports/LowEnergyCentral.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace lb {

// A diagnostic reader of batteries that only Low Energy reaches. While
// "LowEnergyBatteryInfoEnable" is on, it scans for advertising peripherals,
// connects every one whose name holds "LowEnergyBatteryInfoPattern" (all
// when that is empty), reads all their characteristics, and logs the
// standard Battery Level as "Battery level of" lines. A peripheral that
// disconnects is connected again at once. Its results go to the log only.
class LowEnergyBatteryInfo final : private LowEnergyCentralDelegate {
public:
  using CentralFactory = std::function<std::unique_ptr<LowEnergyCentral>()>;

  // Makes a central only while the setting is on, and follows the setting
  // when it changes while the program runs.
  LowEnergyBatteryInfo(UserDefaults& defaults, Tunables& tunables, CentralFactory makeCentral);
  ~LowEnergyBatteryInfo() override;

  bool isRunning() const { return centralManager_ != nullptr; }
  bool shouldIgnore(const LowEnergyPeripheral& peripheral) const;
  void didRead(const LowEnergyPeripheral& peripheral, const LowEnergyCharacteristic& characteristic,
               const std::vector<std::uint8_t>& value);

  // The short form of a standard UUID ("2A19"), else the whole UUID in
  // capitals.
  static std::string uuidString(const std::string& uuid);

private:
  void update();

  void centralManagerDidUpdateState(bool poweredOn) override;
  void didDiscover(const LowEnergyPeripheral& peripheral) override;
  void didConnect(const LowEnergyPeripheral& peripheral) override;
  void didFailToConnect(const LowEnergyPeripheral& peripheral, const std::string& error) override;
  void didDisconnectPeripheral(const LowEnergyPeripheral& peripheral, const std::string& error) override;
  void didDiscoverServices(const LowEnergyPeripheral& peripheral,
                           const std::vector<LowEnergyService>& services) override;
  void didDiscoverCharacteristics(const LowEnergyPeripheral& peripheral, const LowEnergyService& service,
                                  const std::vector<LowEnergyCharacteristic>& characteristics) override;
  void didUpdateValue(const LowEnergyPeripheral& peripheral, const LowEnergyCharacteristic& characteristic,
                      const std::optional<std::string>& error) override;

  Tunables& tunables_;
  CentralFactory makeCentral_;
  std::unique_ptr<LowEnergyCentral> centralManager_;
  // Seen and not disconnected since; a failed connection stays here, so it
  // is not tried again.
  std::set<std::string> discoveredPeripherals_;
  std::unique_ptr<NotificationRegistration> settingChanges_;
};

} // namespace lb
