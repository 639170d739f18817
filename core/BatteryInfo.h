#pragma once

#include "core/Tunables.h"
#include "foundation/Clock.h"
#include "foundation/PXRAtomic.h"
#include "ports/BatterySources.h"
#include "ports/Bluetooth.h"
#include "ports/BluetoothDevice.h"
#include "ports/OperatingSystem.h"

#include <array>
#include <functional>
#include <map>
#include <string>

namespace lb {

// A device's battery levels, from the helper tool (once the program has run
// a while), the battery registry, or the device object's own properties, in
// that order, with the last non-empty answer kept per address.
class BatteryInfo {
public:
  enum class Key {
    BatteryPercent,
    BatteryPercentSingle,
    BatteryPercentLeft,
    BatteryPercentRight,
    BatteryPercentCombined,
    BatteryPercentCase,
    HeadsetBattery
  };
  static constexpr std::array<Key, 7> allKeys{
      Key::BatteryPercent,         Key::BatteryPercentSingle, Key::BatteryPercentLeft, Key::BatteryPercentRight,
      Key::BatteryPercentCombined, Key::BatteryPercentCase,   Key::HeadsetBattery};
  // "BatteryPercentLeft"
  static std::string rawValue(Key key);
  // "batteryPercentLeft": the name of the device object's property
  static std::string keyString(Key key);

  using Dictionary = SettingsValue::Dictionary;

  // `launch`: when the program started, which decides when the helper is due.
  BatteryInfo(BatterySources& sources, Tunables& tunables, const Clock& clock, Date launch)
      : sources_(sources), tunables_(tunables), clock_(clock), launch_(launch) {}

  // The whole chain, falling back to the last non-empty answer.
  Dictionary fallbackInfo(const BluetoothDevice& device);
  // The helper tool when it is due, then `info`.
  Dictionary topLevelInfo(const BluetoothDevice& device);
  Dictionary helperInfo(const BluetoothDevice& device);
  bool shouldUseHelper() const;
  // The registry, then the device's properties; never throws.
  Dictionary info(const BluetoothDevice& device);
  Dictionary registryInfo(const BluetoothDevice& device);

  // The print mode's body: the device's `info` (no helper, no cache) handed
  // to `print`, which writes it out and may throw. An unknown address
  // prints nothing.
  void printBatteryInfo(Bluetooth& bluetooth, const std::string& addressString,
                        const std::function<void(const Dictionary&)>& print);
  // The whole print mode: any failure is logged, never thrown.
  void mainPrintBatteryInfo(Bluetooth& bluetooth, const std::string& addressString,
                            const std::function<void(const Dictionary&)>& print);

private:
  BatterySources& sources_;
  Tunables& tunables_;
  const Clock& clock_;
  const Date launch_;
  PXRAtomic<std::map<std::string, Dictionary>> cache_{{}};
};

} // namespace lb
