#include "core/LowEnergyBatteryInfo.h"

#include "core/LogAreas.h"

#include <cctype>

namespace lb {

namespace {

// The standard Battery Level characteristic.
const std::string batteryLevelUUID = LowEnergyBatteryInfo::uuidString("0x2A19");

std::string nameOf(const LowEnergyPeripheral& peripheral) { return peripheral.name.value_or(peripheral.identifier); }

std::string hex(const std::vector<std::uint8_t>& bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text = "<";
  for (auto byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 0xf];
  }
  return text + ">";
}

std::string joined(const std::vector<std::string>& items) {
  std::string text = "(";
  for (const auto& item : items) text += (text.size() > 1 ? ", " : "") + LowEnergyBatteryInfo::uuidString(item);
  return text + ")";
}

} // namespace

LowEnergyBatteryInfo::LowEnergyBatteryInfo(UserDefaults& defaults, Tunables& tunables, CentralFactory makeCentral)
    : tunables_(tunables), makeCentral_(std::move(makeCentral)) {
  settingChanges_ = defaults.addChangeListener([this](const std::string& key) {
    if (key == tunable::LowEnergyBatteryInfoEnable.key) update();
  });
  update();
}

LowEnergyBatteryInfo::~LowEnergyBatteryInfo() {
  if (centralManager_) centralManager_->stopScan();
}

void LowEnergyBatteryInfo::update() {
  const bool enabled = tunables_(tunable::LowEnergyBatteryInfoEnable);
  if (enabled == isRunning()) return;
  if (!enabled) {
    PXR_LOG(lowEnergyLog(), "Stopped");
    centralManager_->stopScan();
    centralManager_.reset();
    discoveredPeripherals_.clear();
    return;
  }
  centralManager_ = makeCentral_();
  PXR_LOG(lowEnergyLog(), "Created");
  centralManager_->setDelegate(this);
}

bool LowEnergyBatteryInfo::shouldIgnore(const LowEnergyPeripheral& peripheral) const {
  const auto pattern = tunables_(tunable::LowEnergyBatteryInfoPattern);
  if (pattern.empty()) return false;
  return nameOf(peripheral).find(pattern) == std::string::npos;
}

std::string LowEnergyBatteryInfo::uuidString(const std::string& uuid) {
  std::string upper;
  for (char c : uuid.starts_with("0x") || uuid.starts_with("0X") ? uuid.substr(2) : uuid)
    upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  // A 16-bit UUID stands for its place in the Bluetooth base UUID.
  constexpr std::string_view base = "-0000-1000-8000-00805F9B34FB";
  if (upper.size() == 36 && upper.starts_with("0000") && upper.ends_with(base)) return upper.substr(4, 4);
  return upper;
}

void LowEnergyBatteryInfo::centralManagerDidUpdateState(bool poweredOn) {
  PXR_LOG(lowEnergyLog(), "centralManagerDidUpdateState", "state", poweredOn ? 5 : 4);
  if (poweredOn) centralManager_->scanForPeripherals();
}

void LowEnergyBatteryInfo::didDiscover(const LowEnergyPeripheral& peripheral) {
  if (!discoveredPeripherals_.insert(peripheral.identifier).second) return;
  PXR_LOG(lowEnergyLog(), "didDiscover", nameOf(peripheral));
  if (!shouldIgnore(peripheral)) centralManager_->connect(peripheral.identifier);
}

void LowEnergyBatteryInfo::didConnect(const LowEnergyPeripheral& peripheral) {
  PXR_LOG(lowEnergyLog(), "centralManager", nameOf(peripheral), "didConnect");
  centralManager_->discoverServices(peripheral.identifier);
}

void LowEnergyBatteryInfo::didFailToConnect(const LowEnergyPeripheral& peripheral, const std::string& error) {
  PXR_LOG(lowEnergyLog(), "didFailToConnect", nameOf(peripheral), "error", error);
}

void LowEnergyBatteryInfo::didDisconnectPeripheral(const LowEnergyPeripheral& peripheral, const std::string& error) {
  PXR_LOG(lowEnergyLog(), "didDisconnectPeripheral", nameOf(peripheral), "error", error);
  discoveredPeripherals_.erase(peripheral.identifier);
  centralManager_->connect(peripheral.identifier);
}

void LowEnergyBatteryInfo::didDiscoverServices(const LowEnergyPeripheral& peripheral,
                                               const std::vector<LowEnergyService>& services) {
  PXR_LOG(lowEnergyLog(), "didDiscoverServices", nameOf(peripheral), services.size());
  for (const auto& service : services)
    centralManager_->discoverCharacteristics(peripheral.identifier, service.identifier);
}

void LowEnergyBatteryInfo::didDiscoverCharacteristics(const LowEnergyPeripheral& peripheral,
                                                      const LowEnergyService& service,
                                                      const std::vector<LowEnergyCharacteristic>& characteristics) {
  PXR_LOG(lowEnergyLog(), "didDiscoverCharacteristicsFor", nameOf(peripheral), uuidString(service.uuid));
  for (const auto& characteristic : characteristics) {
    centralManager_->readValue(peripheral.identifier, characteristic.identifier);
    if (characteristic.value) {
      didRead(peripheral, characteristic, *characteristic.value);
    } else {
      PXR_LOG(lowEnergyLog(), "peripheral", nameOf(peripheral), "requested read of characteristic",
              uuidString(characteristic.uuid), "uuidString", uuidString(characteristic.uuid), "value");
    }
  }
}

void LowEnergyBatteryInfo::didUpdateValue(const LowEnergyPeripheral& peripheral,
                                          const LowEnergyCharacteristic& characteristic,
                                          const std::optional<std::string>& error) {
  if (!error && characteristic.value) return didRead(peripheral, characteristic, *characteristic.value);
  PXR_LOG(lowEnergyLog(), "peripheral", nameOf(peripheral), "no value for", uuidString(characteristic.uuid), "error",
          error.value_or("none"));
}

void LowEnergyBatteryInfo::didRead(const LowEnergyPeripheral& peripheral, const LowEnergyCharacteristic& characteristic,
                                   const std::vector<std::uint8_t>& value) {
  PXR_LOG(lowEnergyLog(), "peripheral", nameOf(peripheral), "characteristic", uuidString(characteristic.uuid), "value",
          hex(value), "descriptors", joined(characteristic.descriptors));
  // The standard's level is 0 to 100 in the first byte; more bytes are not
  // its.
  if (uuidString(characteristic.uuid) == batteryLevelUUID && !value.empty())
    PXR_LOG(lowEnergyLog(), "Battery level of", nameOf(peripheral), static_cast<unsigned>(value[0]));
}

} // namespace lb
