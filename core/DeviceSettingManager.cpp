#include "core/DeviceSettingManager.h"

#include "core/LogAreas.h"
#include "core/SettingKeys.h"
#include "foundation/BluetoothAddress.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace lb {

using namespace std::chrono_literals;

DeviceSettingManager::DeviceSettingManager(Services& services)
    : services_(services), scriptSaver_(services.scriptsFolder, services.defaults) {
  PXR_LOG(dockLog(), "DeviceSettingManager.init()");
  checkMigration();
  load();
  firstLaunch_ = list_.empty();
  connectionObserver_ = services_.bluetooth.registerForConnectNotifications(
      [this](const BluetoothNotification& notification, const std::shared_ptr<BluetoothDevice>& device) {
        deviceConnected(notification, device);
      });
  statusTimer_ = std::make_unique<PXRTimer>(10s, true, [this] { updateItemIcon(); });
  statusTimer_->schedule(services_.loop);
}

DeviceSettingManager::~DeviceSettingManager() {
  statusTimer_.reset();
  unregister();
  synchronize();
}

void DeviceSettingManager::checkMigration() {
  if (services_.defaults.stringValue(settingKey::currentSettingVersion, "") != currentSettingVersion) {
    services_.defaults.setValue(settingKey::currentSettingVersion, currentSettingVersion);
  }
}

// All or nothing: one element that is not a dictionary means the list is not
// ours to read, and no device is loaded; the list is kept aside, since the
// next save writes the devices of this run.
void DeviceSettingManager::load() {
  auto stored = services_.defaults.object(settingKey::devices);
  PXR_LOG(dockLog(), "Devices to load:", describe(stored));
  if (!stored) return;
  auto array = stored->as<SettingsValue::Array>();
  const bool readable = array && std::all_of(array->begin(), array->end(), [](const SettingsValue& element) {
                          return element.is<SettingsValue::Dictionary>();
                        });
  if (!readable) {
    const auto aside = keyForUnreadableDevices();
    services_.defaults.setValue(aside, *stored);
    PXR_LOG_ERROR("The saved device list is not a list of devices; it is kept under \"" + aside +
                  "\" in the settings, and Lanternbud starts without devices.");
    return;
  }
  std::vector<SettingsValue::Dictionary> entries;
  for (const auto& element : *array) entries.push_back(*element.as<SettingsValue::Dictionary>());
  giveValidIDs(entries);
  for (auto& entry : entries) {
    auto setting = DeviceSetting::make(services_, std::move(entry), this);
    PXR_LOG(dockLog(), "Loading device setting:", setting->description());
    list_.push_back(setting);
  }
}

// A key of its own for every list kept aside, so that none replaces another:
// "devices.unreadable-20261124-094107" (UTC), with "-2" and on within a second.
std::string DeviceSettingManager::keyForUnreadableDevices() const {
  const auto now = std::chrono::floor<std::chrono::seconds>(services_.loop.now());
  const auto day = std::chrono::floor<std::chrono::days>(now);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{now - day};
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "%04d%02u%02u-%02lld%02lld%02lld", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<long long>(time.hours().count()), static_cast<long long>(time.minutes().count()),
                static_cast<long long>(time.seconds().count()));
  const auto base = std::string(SettingKeys::unreadableDevicesPrefix) + stamp;
  auto key = base;
  for (int n = 2; services_.defaults.object(key); ++n) key = base + "-" + std::to_string(n);
  return key;
}

// Valid IDs stay as they are; an entry whose ID is missing, repeated, not an
// integer or out of range gets the next free one, so that no two devices,
// script files or paths of the scripting interface are confused.
void DeviceSettingManager::giveValidIDs(std::vector<SettingsValue::Dictionary>& entries) {
  std::set<std::int64_t> taken;
  std::vector<SettingsValue::Dictionary*> invalid;
  for (auto& entry : entries) {
    auto found = entry.find(deviceOption::deviceID);
    const auto* ID = found == entry.end() ? nullptr : found->second.as<std::int64_t>();
    if (ID && *ID >= 1 && *ID <= maximumDeviceID && taken.insert(*ID).second) {
      maxDeviceID_ = std::max(maxDeviceID_, *ID + 1);
    } else {
      invalid.push_back(&entry);
    }
  }
  for (auto* entry : invalid) {
    const auto old = entry->contains(deviceOption::deviceID) ? entry->at(deviceOption::deviceID).description()
                                                             : std::string("none");
    PXR_LOG_ERROR("A saved device had the ID " + old + ", which is missing, repeated or out of range; it is now " +
                  std::to_string(maxDeviceID_) + ".");
    entry->insert_or_assign(deviceOption::deviceID, maxDeviceID_++);
  }
}

Result<> DeviceSettingManager::synchronize() {
  SettingsValue::Array devices;
  for (const auto& setting : list_) {
    if (auto name = setting->deviceName()) setting->storeDeviceName(*name);
    devices.emplace_back(setting->options());
  }
  services_.defaults.setValue(settingKey::devices, std::move(devices));
  if (auto problem = services_.defaults.saveProblem()) return Failure{*problem};
  return {};
}

void DeviceSettingManager::sort() {
  auto before = [this](const DeviceSetting& a, const DeviceSetting& b) {
    auto nameA = a.deviceName(), nameB = b.deviceName();
    if (nameA && nameB) return services_.collator.compare(*nameA, *nameB) < 0;
    return a.deviceID() < b.deviceID();
  };
  // Insertion sort: stable, and safe although the test above (names where
  // both have one, else IDs) is not a strict weak order, which std::sort and
  // std::stable_sort require. The list holds a handful of devices.
  for (std::size_t i = 1; i < list_.size(); ++i) {
    for (std::size_t j = i; j > 0 && before(*list_[j], *list_[j - 1]); --j) std::swap(list_[j], list_[j - 1]);
  }
}

bool DeviceSettingManager::holds(const DeviceSetting& setting, std::string_view address) {
  return sameBluetoothAddress(setting.storedAddress().value_or(""), address);
}

DeviceSetting* DeviceSettingManager::find(std::string_view address) const {
  for (const auto& setting : list_) {
    if (holds(*setting, address)) return setting.get();
  }
  return nullptr;
}

auto DeviceSettingManager::add(const std::string& text) -> Result<DeviceSetting&, AddError> {
  const auto address = BluetoothAddress::parse(text);
  if (!address) return AddError::invalid;
  if (find(text)) return AddError::alreadyAdded;
  auto device = services_.bluetooth.deviceWithAddressString(address->toString());
  if (!device) return AddError::unknown;
  auto setting = DeviceSetting::make(services_, *device, maxDeviceID_, this);
  list_.push_back(setting);
  sort();
  ++maxDeviceID_;
  setting->setupStatusItem();
  noteChange();
  if (!synchronize()) return AddError::notSaved;
  return *setting;
}

auto DeviceSettingManager::remove(std::int64_t deviceID) -> Result<void, RemoveError> {
  const auto found = std::find_if(list_.begin(), list_.end(),
                                  [deviceID](const auto& setting) { return setting->deviceID() == deviceID; });
  if (found == list_.end()) return RemoveError::unknown;
  const auto setting = *found;
  setting->removeStatusItem();
  for (auto type : allScriptTypes) scriptSaver_.cleanUp(deviceID, type);
  list_.erase(found);
  services_.defaults.removeValue(setting->shortCutKey());
  services_.defaults.removeValue(setting->oldShortCutKey());
  if (const auto address = setting->address()) {
    services_.lowBatteryWarnings.forget(address->toString());
    services_.batteryHistories.forget(address->toString());
  }
  noteChange();
  if (!synchronize()) return RemoveError::notSaved;
  return {};
}

void DeviceSettingManager::optionsChanged(const DeviceSetting& setting) {
  noteChange(&setting);
  synchronize();
}

void DeviceSettingManager::updateItemIcon() {
  sort();
  for (const auto& setting : list_) setting->updateButtonImage();
  noteChange();
}

void DeviceSettingManager::showLandingPopover(DeviceSetting& setting) {
  if (!firstLaunch_) return;
  firstLaunch_ = false;
  services_.loop.postAfter(500ms, [&windows = services_.windows, weak = setting.weak_from_this()] {
    auto owner = weak.lock();
    if (owner && owner->statusItem()) windows.showLandingPopover(*owner->statusItem());
  });
}

void DeviceSettingManager::deviceConnected(const BluetoothNotification& notification,
                                           const std::shared_ptr<BluetoothDevice>& device) {
  if (!device) {
    PXR_LOG(bluetoothNotificationsLog(), "Nil device connected:", notification);
    return;
  }
  PXR_LOG(bluetoothNotificationsLog(), "Device connected:", notification, "device:", *device);
  // Every setting of it: a saved list may hold one address twice.
  for (const auto& setting : list_) {
    if (holds(*setting, device->addressString())) setting->deviceConnected(notification);
  }
}

void DeviceSettingManager::unregister() {
  for (const auto& setting : list_) setting->unregister();
  connectionObserver_.reset();
}

} // namespace lb
