#include "core/BatteryInfo.h"

#include "core/LogAreas.h"
#include "foundation/BluetoothAddress.h"

#include <algorithm>

namespace lb {

namespace {

bool isNonZeroNumber(const SettingsValue& value) {
  if (auto integer = value.as<std::int64_t>()) return *integer != 0;
  if (auto real = value.as<double>()) return *real != 0;
  return false;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::string BatteryInfo::rawValue(Key key) {
  static constexpr const char* names[] = {"BatteryPercent",      "BatteryPercentSingle",   "BatteryPercentLeft",
                                          "BatteryPercentRight", "BatteryPercentCombined", "BatteryPercentCase",
                                          "HeadsetBattery"};
  return names[static_cast<int>(key)];
}

std::string BatteryInfo::keyString(Key key) {
  auto text = rawValue(key);
  text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  return text;
}

BatteryInfo::Dictionary BatteryInfo::fallbackInfo(const BluetoothDevice& device) {
  auto found = topLevelInfo(device);
  if (tunables_(tunable::BatteryInfoDisableCache)) return found;
  const auto address = device.addressString();
  if (address.empty()) return found;
  if (!found.empty()) {
    cache_.mutate([&](auto& cache) { cache[address] = found; });
    return found;
  }
  auto cache = cache_.value();
  if (auto cached = cache.find(address); cached != cache.end()) {
    PXR_LOG(batteryInfoLog(), "Found cached info for", device.name(), SettingsValue(cached->second));
    return cached->second;
  }
  PXR_LOG(batteryInfoLog(), "No cached info for", device.name());
  return found;
}

BatteryInfo::Dictionary BatteryInfo::topLevelInfo(const BluetoothDevice& device) {
  if (shouldUseHelper()) {
    try {
      auto helper = helperInfo(device);
      if (!helper.empty()) {
        PXR_LOG(batteryInfoLog(), "Helper info for", device.name(), SettingsValue(helper));
        return helper;
      }
    } catch (const std::exception& error) {
      PXR_LOG_ERROR("Helper error for", device.name(), error.what());
    }
  }
  return info(device);
}

bool BatteryInfo::shouldUseHelper() const {
  if (!tunables_(tunable::BatteryInfoUseHelper)) return false;
  // Not in the first minutes of a run: the sources of the program itself
  // answer those.
  return tunables_(tunable::BatteryInfoStalenessInterval) < timeBetween(launch_, clock_.now());
}

BatteryInfo::Dictionary BatteryInfo::helperInfo(const BluetoothDevice& device) {
  const auto address = device.addressString();
  if (address.empty()) {
    PXR_LOG_ERROR("Nil address for device " + device.description());
    return {};
  }
  auto answer = sources_.runHelper(address);
  auto dictionary = answer.as<Dictionary>();
  return dictionary ? *dictionary : Dictionary{};
}

BatteryInfo::Dictionary BatteryInfo::info(const BluetoothDevice& device) {
  try {
    auto registry = registryInfo(device);
    if (!registry.empty()) {
      PXR_LOG(batteryInfoLog(), "Registry info for", device.name(), SettingsValue(registry));
      return registry;
    }
  } catch (const std::exception& error) {
    PXR_LOG_ERROR("Registry error for", device.name(), error.what());
  }
  Dictionary result;
  for (auto key : allKeys) {
    auto value = device.batteryProperty(keyString(key));
    if (!value) continue;
    // A zero level means the device does not know; any other value is kept.
    if ((value->is<std::int64_t>() || value->is<double>()) && !isNonZeroNumber(*value)) continue;
    result.emplace(rawValue(key), *value);
  }
  PXR_LOG(batteryInfoLog(), "Info for", device.name(), SettingsValue(result));
  return result;
}

BatteryInfo::Dictionary BatteryInfo::registryInfo(const BluetoothDevice& device) {
  if (tunables_(tunable::BatteryInfoDisableRegistry)) return {};
  const auto address = device.addressString();
  const auto excluded = tunables_(tunable::BatteryInfoRegistryExcludedNames);
  const auto included = tunables_(tunable::BatteryInfoRegistryIncludedNames);
  for (const auto& entry : sources_.registryEntries()) {
    PXR_LOG(batteryInfoIterationLog(), "Name", entry.name, "Path", entry.path);
    if (contains(excluded, entry.name)) {
      PXR_LOG(batteryInfoIterationLog(), "Skipping excluded name", entry.name);
      continue;
    }
    if (!contains(included, entry.name)) {
      PXR_LOG(batteryInfoIterationLog(), "Skipping not included name", entry.name);
      continue;
    }
    if (!entry.properties) continue;
    const auto& properties = *entry.properties;
    auto text = [&](const char* key) -> std::optional<std::string> {
      auto found = properties.find(key);
      if (found == properties.end() || !found->second.is<std::string>()) return std::nullopt;
      return *found->second.as<std::string>();
    };
    PXR_LOG(batteryInfoIterationLog(), "Got properties for", text("Product"));
    const auto same = [&](const char* key) { return sameBluetoothAddress(text(key).value_or(""), address); };
    if (!same("DeviceAddress") && !same("SerialNumber")) continue;
    PXR_LOG(batteryInfoDetailLog(), "Registry info for", text("Product"), ":", SettingsValue(properties));
    Dictionary result;
    for (auto key : allKeys) {
      auto found = properties.find(rawValue(key));
      if (found != properties.end() && isNonZeroNumber(found->second)) result.emplace(found->first, found->second);
    }
    if (!result.empty()) return result;
  }
  return {};
}

void BatteryInfo::printBatteryInfo(Bluetooth& bluetooth, const std::string& addressString,
                                   const std::function<void(const Dictionary&)>& print) {
  auto device = bluetooth.deviceWithAddressString(addressString);
  if (!device) return;
  print(info(*device));
}

void BatteryInfo::mainPrintBatteryInfo(Bluetooth& bluetooth, const std::string& addressString,
                                       const std::function<void(const Dictionary&)>& print) {
  try {
    printBatteryInfo(bluetooth, addressString, print);
  } catch (const std::exception& error) {
    PXR_LOG_ERROR("Main battery info error", error.what());
  }
}

} // namespace lb
