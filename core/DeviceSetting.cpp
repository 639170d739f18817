#include "core/DeviceSetting.h"

#include "core/DeviceSettingManager.h"
#include "core/LogAreas.h"
#include "core/ScriptType.h"

namespace lb {

namespace {
constexpr const char* deviceIDKey = "deviceID";
constexpr const char* deviceKey = "device";
constexpr const char* deviceNameKey = "deviceName";
constexpr const char* iconKey = "icon";
constexpr const char* isActiveKey = "isActive";
constexpr const char* connectOnlyModeKey = "connectOnlyMode";
constexpr const char* keepDefaultAudioInputKey = "keepDefaultAudioInput";
constexpr const char* runAfterConnectedKey = "runShellScriptAfterConnected";
constexpr const char* runAfterDisconnectedKey = "runShellScriptAfterDisconnected";
constexpr const char* showBatteryLevelKey = "showBatteryLevel";

std::string describe(const std::optional<bool>& value) { return pxrDescribe(value); }
} // namespace

DeviceSetting::DeviceSetting(Services& services, DeviceSettingManager* registry)
    : services_(services), registry_(registry) {}

std::shared_ptr<DeviceSetting> DeviceSetting::make(Services& services, SettingsValue::Dictionary options,
                                                   DeviceSettingManager* registry) {
  std::shared_ptr<DeviceSetting> setting(new DeviceSetting(services, registry));
  setting->options_ = std::move(options);
  setting->loadScripts();
  setting->startTimer();
  return setting;
}

std::shared_ptr<DeviceSetting> DeviceSetting::make(Services& services, const BluetoothDevice& device,
                                                   std::int64_t ID, DeviceSettingManager* registry) {
  std::shared_ptr<DeviceSetting> setting(new DeviceSetting(services, registry));
  setting->setOption(deviceIDKey, ID);
  setting->setDevice(&device);
  setting->loadScripts();
  setting->startTimer();
  return setting;
}

// The script files are the truth about the scripts: whatever the saved
// options say is replaced by the files' texts, or removed.
void DeviceSetting::loadScripts() {
  for (auto type : allScriptTypes) {
    auto key = rawValue(type);
    if (auto text = services_.scriptsFolder.read(scriptFileName(deviceID(), type))) {
      setOption(key.c_str(), *text);
    } else {
      removeOption(key.c_str());
    }
  }
}

void DeviceSetting::startTimer() {
  if (!services_.tunables(tunable::ConnectionUpdateUseTimer)) return;
  timer_ = std::make_unique<PXRTimer>(services_.tunables(tunable::ConnectionUpdateTimerInterval), true,
                                      [weak = weak_from_this()] {
                                        if (auto self = weak.lock()) self->updateConnectionState(ConnectionUpdateReason::timer());
                                      });
  timer_->schedule(services_.loop);
}

SettingsValue::Dictionary DeviceSetting::options() const {
  std::lock_guard lock(optionsMutex_);
  return options_;
}

std::optional<SettingsValue> DeviceSetting::option(const char* key) const {
  std::lock_guard lock(optionsMutex_);
  auto found = options_.find(key);
  if (found == options_.end()) return std::nullopt;
  return found->second;
}

void DeviceSetting::setOption(const char* key, SettingsValue value) {
  std::lock_guard lock(optionsMutex_);
  options_.insert_or_assign(key, std::move(value));
}

void DeviceSetting::removeOption(const char* key) {
  std::lock_guard lock(optionsMutex_);
  options_.erase(key);
}

bool DeviceSetting::boolOption(const char* key, bool fallback) const {
  auto value = option(key);
  auto stored = value ? value->as<bool>() : nullptr;
  return stored ? *stored : fallback;
}

std::int64_t DeviceSetting::deviceID() const {
  auto value = option(deviceIDKey);
  auto stored = value ? value->as<std::int64_t>() : nullptr;
  return stored ? *stored : 0;
}

std::optional<std::string> DeviceSetting::storedAddress() const {
  auto value = option(deviceKey);
  auto stored = value ? value->as<std::string>() : nullptr;
  if (!stored) return std::nullopt;
  return *stored;
}

std::shared_ptr<BluetoothDevice> DeviceSetting::device() const {
  auto address = storedAddress();
  if (!address) {
    PXR_LOG_ERROR("No device address for options: " + SettingsValue(options()).description());
    return nullptr;
  }
  return services_.bluetooth.deviceWithAddressString(*address);
}

void DeviceSetting::setDevice(const BluetoothDevice* newDevice) {
  dockLog()([&] {
    std::optional<std::string> address;
    if (newDevice) address = newDevice->addressString();
    return "Setting device address to " + pxrDescribe(address) + ".";
  });
  // Looked up quietly: a device being added has no address yet, which is no error.
  auto address = storedAddress();
  auto current = address ? services_.bluetooth.deviceWithAddressString(*address) : nullptr;
  if (newDevice) {
    if (current && *current == *newDevice) return;
    setOption(deviceKey, newDevice->addressString());
  } else if (current) {
    removeOption(deviceKey);
  }
}

std::optional<std::string> DeviceSetting::deviceName() const {
  if (cachedDeviceName_) return cachedDeviceName_;
  auto found = device();
  cachedDeviceName_ = found ? found->name() : std::nullopt;
  return cachedDeviceName_;
}

std::string DeviceSetting::deviceNameOrUnknown() const {
  if (auto name = deviceName()) return *name;
  auto found = device();
  if (found) return found->nameOrAddress();
  return "unknown (nil)";
}

std::string DeviceSetting::description() const { return "<DeviceSetting: " + deviceNameOrUnknown() + ">"; }

void DeviceSetting::storeDeviceName(const std::string& name) { setOption(deviceNameKey, name); }

MenuBarIconOption DeviceSetting::icon() const {
  auto value = option(iconKey);
  auto raw = value ? value->as<std::string>() : nullptr;
  auto known = raw ? menuBarIconOption(*raw) : std::nullopt;
  return known.value_or(MenuBarIconOption::wand);
}

void DeviceSetting::setIcon(MenuBarIconOption newIcon) {
  if (newIcon == icon()) return;
  setOption(iconKey, std::string(rawValue(newIcon)));
  updateButtonImage();
}

bool DeviceSetting::isActive() const { return boolOption(isActiveKey, true); }
bool DeviceSetting::connectionOnlyMode() const { return boolOption(connectOnlyModeKey, false); }
void DeviceSetting::setConnectionOnlyMode(bool value) { setOption(connectOnlyModeKey, value); }
bool DeviceSetting::keepDefaultAudioInput() const { return boolOption(keepDefaultAudioInputKey, false); }
void DeviceSetting::setKeepDefaultAudioInput(bool value) { setOption(keepDefaultAudioInputKey, value); }
bool DeviceSetting::runShellScriptAfterConnected() const { return boolOption(runAfterConnectedKey, false); }
void DeviceSetting::setRunShellScriptAfterConnected(bool value) { setOption(runAfterConnectedKey, value); }
bool DeviceSetting::runShellScriptAfterDisconnected() const { return boolOption(runAfterDisconnectedKey, false); }
void DeviceSetting::setRunShellScriptAfterDisconnected(bool value) { setOption(runAfterDisconnectedKey, value); }
bool DeviceSetting::showBatteryLevel() const { return boolOption(showBatteryLevelKey, false); }

void DeviceSetting::setShowBatteryLevel(bool value) {
  setOption(showBatteryLevelKey, value);
  updateButtonImage();
}

std::string DeviceSetting::shellScriptAfterConnected() const {
  auto value = option("connected");
  auto text = value ? value->as<std::string>() : nullptr;
  return text ? *text : defaultScript;
}

void DeviceSetting::setShellScriptAfterConnected(const std::optional<std::string>& text) {
  if (text) setOption("connected", *text);
  else removeOption("connected");
}

std::string DeviceSetting::shellScriptAfterDisconnected() const {
  auto value = option("disconnected");
  auto text = value ? value->as<std::string>() : nullptr;
  return text ? *text : defaultScript;
}

void DeviceSetting::setShellScriptAfterDisconnected(const std::optional<std::string>& text) {
  if (text) setOption("disconnected", *text);
  else removeOption("disconnected");
}

void DeviceSetting::setupStatusItem() {
  if (statusItem_ || !isActive()) {
    updateConnectionState(ConnectionUpdateReason::becameActive());
    return;
  }
  double length = services_.tunables(tunable::StatusItemLength, services_.statusBar.thickness() + 5.0);
  statusItem_ = services_.statusBar.createStatusItem(length);
  statusItem_->setAccessibilityLabel(deviceName());
  registerNotifications();
  services_.shortcuts.bindShortcut(shortCutKey(), [weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    hotKeyLog()([&] { return "User pressed shortcut for " + self->deviceNameOrUnknown() + "."; });
  });
  if (registry_) registry_->showLandingPopover(*this);
  updateConnectionState(ConnectionUpdateReason::becameActive());
}

void DeviceSetting::removeStatusItem() {
  disconnectObserver_.reset();
  statusItem_.reset();
  services_.shortcuts.breakBinding(shortCutKey());
}

void DeviceSetting::unregister() { removeStatusItem(); }

void DeviceSetting::updateButtonImage() {
  if (!statusItem_) {
    PXR_LOG(iconLog(), "button is nil:", description());
    return;
  }
  if (showsProgress_) {
    PXR_LOG(iconLog(), "Showing progress instead:", description());
    return;
  }
  if (!isConnected_) {
    PXR_LOG(iconLog(), "isConnected is nil:", description());
    return;
  }
  iconLog()([&] { return "Drawing isConnected " + describe(isConnected_) + ": " + description(); });
  statusItem_->setAppearance({std::string(rawValue(icon())), *isConnected_});
}

void DeviceSetting::startProgress() { showsProgress_ = true; }

void DeviceSetting::stopProgress() {
  showsProgress_ = false;
  updateButtonImage();
}

void DeviceSetting::registerNotifications() {
  disconnectObserver_.reset();
  if (services_.tunables(tunable::DeviceSettingDisableDisconnectObservation)) return;
  auto found = device();
  if (!found) return;
  disconnectObserver_ = services_.bluetooth.registerForDisconnectNotification(
      *found, [weak = weak_from_this()](const BluetoothNotification& notification, std::shared_ptr<BluetoothDevice> gone) {
        if (auto self = weak.lock()) self->deviceDisconnected(notification, std::move(gone));
      });
}

void DeviceSetting::deviceConnected(const BluetoothNotification& notification) {
  PXR_LOG(notificationsLog(), "Device connected:", description());
  services_.loop.postAfter(0.1, [weak = weak_from_this(), notification] {
    if (auto self = weak.lock()) self->updateConnectionState(ConnectionUpdateReason::connectedNotification(notification));
  });
}

void DeviceSetting::deviceDisconnected(const BluetoothNotification& notification, std::shared_ptr<BluetoothDevice> gone) {
  PXR_LOG(notificationsLog(), "deviceDisconnected notification:", notification, "device:", description());
  stopProgress();
  if (!gone) {
    PXR_LOG_ERROR("Nil device disconnected:", notification);
    return;
  }
  services_.loop.post([weak = weak_from_this(), notification] {
    if (auto self = weak.lock()) self->updateConnectionState(ConnectionUpdateReason::disconnectedNotification(notification));
  });
}

void DeviceSetting::updateConnectionState(const ConnectionUpdateReason& reason) {
  auto found = device();
  if (!found) return;
  const auto wasConnected = isConnected_;
  if (found->isConnected()) {
    isConnected_ = true;
  } else {
    isConnected_ = false;
    isAudioOutput_ = false;
  }
  if (isConnected_ != wasConnected) {
    isConnectedLog()([&] {
      return "isConnected is now " + describe(isConnected_) + " " + description() + " because " + reason.description();
    });
    if (!wasConnected) {
      connectLog()([&] {
        return "Previous connection state was unknown: " + description() + " so won't run script or change input";
      });
    }
    stopProgress();
  }
}

} // namespace lb
