#include "core/DeviceSetting.h"

#include "core/DeviceSettingManager.h"
#include "core/LogAreas.h"
#include "core/Texts.h"

namespace lb {

DeviceSetting::DeviceSetting(Services& services, SettingsValue::Dictionary options, DeviceSettingManager* registry)
    : bluetooth_(services.bluetooth), registry_(registry), options_(std::move(options)),
      outputFixer_(*this, tracker_, connection_, services),
      scripts_(*this, options_, services.scriptsFolder, services.scriptRunner, services.defaults, services.tunables),
      connection_(*this, options_, outputFixer_, tracker_, services.loop, services.tunables, services.operatingSystem,
                  services.alerts, services.inputDeviceManager),
      tracker_(*this, options_, connection_, outputFixer_, scripts_, services.loop, services.tunables,
               services.bluetooth, services.outputDeviceManager, services.inputDeviceManager, services.deviceInfoCache),
      presentation_(*this, options_, tracker_, outputFixer_, services.loop, services.tunables, services.batteryInfo,
                    services.deviceInfoCache, services.lowBatteryWarnings, services.batteryHistories, services.images),
      statusItem_(*this, options_, *this, tracker_, connection_, presentation_, services.statusBar, services.windows,
                  services.shortcuts, services.tunables) {}

std::shared_ptr<DeviceSetting> DeviceSetting::make(Services& services, SettingsValue::Dictionary options,
                                                   DeviceSettingManager* registry) {
  std::shared_ptr<DeviceSetting> setting(new DeviceSetting(services, std::move(options), registry));
  setting->start();
  return setting;
}

std::shared_ptr<DeviceSetting> DeviceSetting::make(Services& services, const BluetoothDevice& device, std::int64_t ID,
                                                   DeviceSettingManager* registry) {
  SettingsValue::Dictionary options{{deviceOption::deviceID, ID}};
  // The picture that fits the kind of device; without one, the default.
  if (auto icon = iconForClassOfDevice(device.classOfDevice()); icon != MenuBarIconOption::wand) {
    options.emplace(deviceOption::icon, std::string(rawValue(icon)));
  }
  std::shared_ptr<DeviceSetting> setting(new DeviceSetting(services, std::move(options), registry));
  setting->setDevice(&device);
  setting->start();
  return setting;
}

// Timers hold the setting weakly, so they start once it is shared.
void DeviceSetting::start() {
  scripts_.load();
  tracker_.startTimer();
  presentation_.watchBattery();
}

std::shared_ptr<BluetoothDevice> DeviceSetting::device() const {
  auto address = storedAddress();
  if (!address) {
    // Asked every second by the timers: once is news, the rest noise.
    if (!toldNoAddress_.exchange(true)) {
      PXR_LOG_ERROR("No device address for options: " + SettingsValue(options()).description());
    }
    return nullptr;
  }
  return bluetooth_.deviceWithAddressString(*address);
}

void DeviceSetting::setDevice(const BluetoothDevice* newDevice) {
  dockLog()([&] {
    std::optional<std::string> address;
    if (newDevice) address = newDevice->addressString();
    return "Setting device address to " + pxrDescribe(address) + ".";
  });
  // Looked up quietly: a device being added has no address yet, which is no error.
  auto address = storedAddress();
  auto current = address ? bluetooth_.deviceWithAddressString(*address) : nullptr;
  if (newDevice) {
    if (current && *current == *newDevice) return;
    options_.set(deviceOption::device, newDevice->addressString());
  } else if (current) {
    options_.remove(deviceOption::device);
  }
}

std::optional<std::string> DeviceSetting::deviceName() const {
  {
    std::lock_guard lock(nameMutex_);
    if (cachedDeviceName_) return cachedDeviceName_;
  }
  auto found = device();
  auto name = found ? found->name() : std::nullopt;
  std::lock_guard lock(nameMutex_);
  cachedDeviceName_ = name;
  return name;
}

std::optional<std::string> DeviceSetting::knownName() const {
  if (auto name = deviceName()) return name;
  auto found = device();
  return found ? std::optional(found->nameOrAddress()) : std::nullopt;
}

std::string DeviceSetting::deviceNameOrUnknown() const { return knownName().value_or("unknown (nil)"); }

std::string DeviceSetting::displayName() const { return knownName().value_or(localized("Unknown device")); }

std::string DeviceSetting::description() const { return "<DeviceSetting: " + deviceNameOrUnknown() + ">"; }

void DeviceSetting::setIcon(MenuBarIconOption newIcon) {
  if (newIcon == icon()) return;
  options_.set(deviceOption::icon, std::string(rawValue(newIcon)));
  updateButtonImage();
  optionsChanged();
}

void DeviceSetting::setShowBatteryLevel(bool value) {
  options_.set(deviceOption::showBatteryLevel, value);
  updateButtonImage();
  optionsChanged();
}

void DeviceSetting::setWarnsOfLowBattery(bool value) {
  options_.set(deviceOption::warnLowBattery, value);
  optionsChanged();
}

void DeviceSetting::setActive(bool active) {
  if (active == isActive()) return;
  options_.set(deviceOption::isActive, active);
  if (active) {
    setupStatusItem();
  } else {
    removeStatusItem();
  }
  optionsChanged();
}

// What the user chose is saved at once.
void DeviceSetting::optionsChanged() {
  if (registry_) registry_->optionsChanged(*this);
}

void DeviceSetting::setupStatusItem() {
  if (!statusItem_.item() && isActive()) {
    statusItem_.create();
    tracker_.registerNotifications();
    if (registry_) registry_->showLandingPopover(*this);
  }
  updateConnectionState(ConnectionUpdateReason::becameActive());
}

void DeviceSetting::removeStatusItem() {
  tracker_.unregisterNotifications();
  statusItem_.remove();
}

// Whatever the outside mirrors of the device (the scripting interface) may
// have changed with the picture.
void DeviceSetting::updateButtonImage() {
  if (registry_) registry_->noteChange(this);
  statusItem_.update();
}

void DeviceSetting::stopProgress() {
  statusItem_.stopProgress();
  updateButtonImage();
}

void DeviceSetting::makeSoundOutput() {
  if (auto found = device()) tracker_.setOutputInsteadOfDisconnecting(*found);
}

ConnectionOutcome DeviceSetting::toggleConnection(const std::optional<StatusItemClick>& click) {
  return request(std::nullopt, click);
}

ConnectionOutcome DeviceSetting::request(std::optional<bool> wanted, const std::optional<StatusItemClick>& click,
                                         bool evenInConnectOnlyMode) {
  if (click && statusItem_.shouldShowMenu(*click)) {
    statusItem_.popUpMenu(*click);
    return ConnectionOutcome::showingMenu;
  }
  auto found = device();
  if (!found) return ConnectionOutcome::noDevice;
  if (connection_.isBusy()) {
    PXR_LOG(connectLog(), "Ignoring a request for", description(), "while a connection attempt is under way");
    return ConnectionOutcome::busy;
  }
  const bool connected = found->isConnected();
  if (wanted == connected) return ConnectionOutcome::unchanged;
  if (!wanted && tracker_.setOutputInsteadOfDisconnecting(*found)) return ConnectionOutcome::settingOutput;
  if (connection_.refusesDisconnecting(connected, evenInConnectOnlyMode)) {
    return ConnectionOutcome::connectionOnly;
  }
  startProgress();
  connection_.toggle(std::move(found), evenInConnectOnlyMode);
  return connected ? ConnectionOutcome::disconnecting : ConnectionOutcome::connecting;
}

} // namespace lb
