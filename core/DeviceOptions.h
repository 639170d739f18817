#pragma once

#include "core/MenuBarIconOption.h"
#include "core/ScriptType.h"
#include "foundation/BluetoothAddress.h"
#include "foundation/SettingsValue.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace lb {

// The keys of a device's options, as they are saved under "devices".
namespace deviceOption {
inline constexpr const char* deviceID = "deviceID";
inline constexpr const char* device = "device"; // the Bluetooth address
inline constexpr const char* deviceName = "deviceName";
inline constexpr const char* icon = "icon";
inline constexpr const char* isActive = "isActive";
inline constexpr const char* connectOnlyMode = "connectOnlyMode";
inline constexpr const char* keepDefaultAudioInput = "keepDefaultAudioInput";
inline constexpr const char* runShellScriptAfterConnected = "runShellScriptAfterConnected";
inline constexpr const char* runShellScriptAfterDisconnected = "runShellScriptAfterDisconnected";
inline constexpr const char* showBatteryLevel = "showBatteryLevel";
inline constexpr const char* warnLowBattery = "warnLowBattery";
} // namespace deviceOption

// A device's options dictionary, which is also its saved form. The worker
// that connects reads it while the main thread may change it, so every
// access takes the lock.
class DeviceOptions {
public:
  explicit DeviceOptions(SettingsValue::Dictionary values = {}) : values_(std::move(values)) {}

  SettingsValue::Dictionary snapshot() const {
    std::lock_guard lock(mutex_);
    return values_;
  }

  // The value under `key` if it has type T; a value of another type counts
  // as missing.
  template <class T>
  std::optional<T> value(const std::string& key) const {
    std::lock_guard lock(mutex_);
    auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    auto typed = found->second.as<T>();
    return typed ? std::optional<T>(*typed) : std::nullopt;
  }

  template <class T>
  T option(const std::string& key, T fallback) const {
    return value<T>(key).value_or(std::move(fallback));
  }

  // The options by name, with the defaults a new device has.
  std::int64_t deviceID() const { return option<std::int64_t>(deviceOption::deviceID, 0); }
  // The address as saved, whether or not the system knows the device.
  std::optional<std::string> storedAddress() const { return value<std::string>(deviceOption::device); }
  // The same, read as an address: none when missing or malformed.
  std::optional<BluetoothAddress> address() const { return BluetoothAddress::parse(storedAddress().value_or("")); }
  MenuBarIconOption icon() const {
    auto raw = value<std::string>(deviceOption::icon);
    auto known = raw ? menuBarIconOption(*raw) : std::nullopt;
    return known.value_or(MenuBarIconOption::wand);
  }
  bool isActive() const { return option(deviceOption::isActive, true); }
  bool connectionOnlyMode() const { return option(deviceOption::connectOnlyMode, false); }
  bool keepDefaultAudioInput() const { return option(deviceOption::keepDefaultAudioInput, false); }
  bool runsScript(ScriptType type) const {
    return option(type == ScriptType::connected ? deviceOption::runShellScriptAfterConnected
                                                : deviceOption::runShellScriptAfterDisconnected,
                  false);
  }
  bool showBatteryLevel() const { return option(deviceOption::showBatteryLevel, false); }
  // Unset, it follows the desktop: off where the desktop warns by itself.
  bool warnsOfLowBattery(bool byDefault) const { return option(deviceOption::warnLowBattery, byDefault); }

  void set(const std::string& key, SettingsValue value) {
    std::lock_guard lock(mutex_);
    values_.insert_or_assign(key, std::move(value));
  }

  void remove(const std::string& key) {
    std::lock_guard lock(mutex_);
    values_.erase(key);
  }

private:
  mutable std::mutex mutex_;
  SettingsValue::Dictionary values_;
};

} // namespace lb
