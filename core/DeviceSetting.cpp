#include "core/DeviceSetting.h"

#include "core/BatteryType.h"
#include "core/DeviceSettingManager.h"
#include "core/LogAreas.h"
#include "core/ScriptType.h"
#include "core/Texts.h"

#include <cmath>

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
    : services_(services), registry_(registry), scriptSaver_(services.scriptsFolder, services.defaults),
      outputFixer_(std::make_unique<OutputFixer>(*this, services)) {}

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

std::string DeviceSetting::scriptText(ScriptType type) const {
  auto value = option(rawValue(type).c_str());
  auto text = value ? value->as<std::string>() : nullptr;
  return text ? *text : defaultScript;
}

void DeviceSetting::setScriptText(ScriptType type, const std::optional<std::string>& text) {
  if (text) setOption(rawValue(type).c_str(), *text);
  else removeOption(rawValue(type).c_str());
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
  if (registry_) registry_->noteChange();
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

void DeviceSetting::startProgress() {
  showsProgress_ = true;
  if (statusItem_) statusItem_->setBusy(true);
}

void DeviceSetting::stopProgress() {
  showsProgress_ = false;
  if (statusItem_) statusItem_->setBusy(false);
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
  PXR_LOG(notificationsLog(), "Device connected:", description(), outputFixer_->state());
  services_.loop.postAfter(0.1, [weak = weak_from_this(), notification] {
    if (auto self = weak.lock()) self->updateConnectionState(ConnectionUpdateReason::connectedNotification(notification));
  });
}

void DeviceSetting::deviceDisconnected(const BluetoothNotification& notification, std::shared_ptr<BluetoothDevice> gone) {
  PXR_LOG(notificationsLog(), "deviceDisconnected notification:", notification, "device:", description(),
          outputFixer_->state());
  stopProgress();
  if (!gone) {
    PXR_LOG_ERROR("Nil device disconnected:", notification);
    return;
  }
  services_.loop.post([weak = weak_from_this(), notification] {
    auto self = weak.lock();
    if (!self) return;
    self->outputFixer_->didDisconnect();
    self->updateConnectionState(ConnectionUpdateReason::disconnectedNotification(notification));
  });
}

void DeviceSetting::updateConnectionState(const ConnectionUpdateReason& reason) {
  auto found = device();
  if (!found) return;
  const auto wasConnected = isConnected_;
  const auto wasAudioOutput = isAudioOutput_;
  const auto wasPotentialAudioOutput = isPotentialAudioOutput_;
  if (found->isConnected()) {
    isConnected_ = true;
    services_.deviceInfoCache.remove(this); // battery levels are read afresh next time
    if (services_.tunables(tunable::EnableAudioOutput)) {
      if (isPotentialAudioOutput_ != true) {
        isPotentialAudioOutput_ = services_.outputDeviceManager.isPotentialOutput(*this);
      }
      if (isPotentialAudioOutput_ == true) isAudioOutput_ = services_.outputDeviceManager.isCurrent(*this);
    }
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
    } else if (*isConnected_) {
      reactToConnection();
    } else {
      reactToDisconnection();
    }
    stopProgress();
  }
  if (isAudioOutput_ != wasAudioOutput) {
    outputLog()([&] {
      return "isAudioOutput is now " + describe(isAudioOutput_) + " " + description() + " because " + reason.description();
    });
    if (isAudioOutput_ == true) {
      outputFixer_->didDetectCorrectAudioOutput();
      reactToSettingAudioOutput();
    }
    updateButtonImage();
  }
  if (isPotentialAudioOutput_ != wasPotentialAudioOutput) {
    outputLog()([&] {
      return "isPotentialAudioOutput is now " + describe(isPotentialAudioOutput_) + " " + description() + " because " +
             reason.description();
    });
    updateButtonImage();
  }
}

void DeviceSetting::reactToConnection() {
  connectLog()([&] { return "Was not already connected: " + description() + " so will try script and input"; });
  auto weak = weak_from_this();
  fastTimer_ = std::make_unique<PXRTimer>(services_.tunables(tunable::ConnectionUpdateFastTimerInterval), true, [weak] {
    if (auto self = weak.lock()) self->updateConnectionState(ConnectionUpdateReason::fastTimer());
  });
  fastTimer_->schedule(services_.loop);
  // Each connection schedules one drop, which ends whatever fast timer is
  // running by then, even one that a later connection started.
  services_.loop.postAfter(services_.tunables(tunable::ConnectionUpdateFastTimerDuration), [weak] {
    if (auto self = weak.lock()) self->fastTimer_.reset();
  });

  if (isManuallyInitiatedConnection_) {
    if (services_.tunables(tunable::EnableAutoSettingAudioOutput)) {
      if (isAudioOutput_ == false && isPotentialAudioOutput_ == true) {
        outputLog()([&] { return "Setting sound output device because connection was manually initiated: " + description(); });
        setDefaultAudioOutput();
      } else {
        outputFixer_->didAutomaticallySetAudioOutput();
        outputLog()([&] { return "No need to set sound output device because it was already set automatically: " + description(); });
      }
    }
    isManuallyInitiatedConnection_ = false;
  }

  const bool deferToOutput = isPotentialAudioOutput_ == true &&
                             services_.tunables(tunable::RunConnectionScriptWhenSettingAudioOutput);
  if (!deferToOutput) {
    scriptLog()([&] {
      return "Connect script because potential " + describe(isPotentialAudioOutput_) + " and output setting " +
             pxrDescribe(services_.tunables(tunable::RunConnectionScriptWhenSettingAudioOutput)) + ": " + description();
    });
    lastConnectionScriptRun_ = services_.loop.now();
    runScript(ScriptType::connected);
  }
  if (keepDefaultAudioInput()) services_.inputDeviceManager.restoreLast();
}

void DeviceSetting::reactToDisconnection() {
  connectLog()([&] { return "Device disconnected: " + description(); });
  if (outputFixer_->didDisconnect()) return;
  runScript(ScriptType::disconnected);
  services_.inputDeviceManager.rememberCurrentDevice("disconnected");
}

void DeviceSetting::setDefaultAudioOutput() {
  try {
    services_.outputDeviceManager.setCurrent(*this);
    outputFixer_->didManuallySetAudioOutput();
  } catch (const AudioError& error) {
    // Other failures were logged where they happened; only a missing device
    // can be repaired by reconnecting.
    if (error.kind() == AudioError::Kind::noMatchingAudioDevice) outputFixer_->didFailToSetAudioOutput();
  }
}

void DeviceSetting::reactToSettingAudioOutput() {
  if (services_.tunables(tunable::FixAudioInputWhenSettingAudioOutput) && keepDefaultAudioInput()) {
    PXR_LOG(inputLog(), "Fixing audio input because audio output was set to:", description());
    services_.inputDeviceManager.restoreLast();
  }
  if (!services_.tunables(tunable::RunConnectionScriptWhenSettingAudioOutput)) return;
  const auto now = services_.loop.now();
  if (lastConnectionScriptRun_ &&
      std::abs(secondsBetween(*lastConnectionScriptRun_, now)) < services_.tunables(tunable::ConnectionScriptInterval)) {
    PXR_LOG(scriptLog(), "Skipping connect script because audio output set because just ran:", description());
    return;
  }
  PXR_LOG(scriptLog(), "Connect script because audio output set:", description());
  lastConnectionScriptRun_ = now;
  runScript(ScriptType::connected);
}

void DeviceSetting::runScript(ScriptType type) {
  const bool enabled = type == ScriptType::connected ? runShellScriptAfterConnected() : runShellScriptAfterDisconnected();
  if (!enabled) {
    PXR_LOG(scriptLog(), "Script type not enabled: " + rawValue(type));
    return;
  }
  const auto id = deviceID();
  auto folder = services_.scriptsFolder.location();
  if (!folder) {
    PXR_LOG(scriptLog(), "No script URL for: " + std::to_string(id) + " " + rawValue(type));
    return;
  }
  const auto name = scriptFileName(id, type);
  const auto path = *folder + "/" + name;
  if (!services_.scriptsFolder.fileExists(name)) {
    PXR_LOG(scriptLog(), "No script for: " + path);
    return;
  }
  const auto who = description(); // the script may end after this device setting is gone
  scriptLog()([&] { return "Starting to run script " + who + ": " + path; });
  auto failure = services_.scriptRunner.start(path, [who, path](const ScriptRunner::Outcome& outcome) {
    if (outcome.success) {
      scriptLog()([&] { return "Successfully ran script " + who + ": " + path; });
    } else {
      pxrLogError("Error running script " + who + ": " + outcome.description);
    }
  });
  if (failure) pxrLogError("Error creating script: " + *failure);
}

void DeviceSetting::saveScripts() {
  for (auto type : allScriptTypes) {
    const auto key = rawValue(type);
    auto value = option(key.c_str());
    std::optional<std::string> edited;
    if (auto text = value ? value->as<std::string>() : nullptr) edited = *text;
    const auto id = deviceID();
    const bool hasFolder = services_.scriptsFolder.location().has_value();
    if (hasFolder && edited == services_.scriptsFolder.read(scriptFileName(id, type))) continue;
    if (!hasFolder && !edited) continue;
    scriptSaveLog()([&] { return "Saving " + key + " for device " + description(); });
    scriptSaver_.saveScript(id, type, edited);
  }
}

void DeviceSetting::toggleConnection(bool menuRequested) {
  if (menuRequested && statusItem_) {
    statusItem_->popUpMenu();
    return;
  }
  auto found = device();
  if (!found) return;
  if (found->isConnected() && services_.tunables(tunable::EnableAudioOutput) && isAudioOutput_ == false &&
      isPotentialAudioOutput_ == true) {
    connectLog()([&] { return "Already connected but trying to set audio output: " + description(); });
    if (services_.tunables(tunable::RememberAudioInputWhenSettingAudioOutput)) {
      services_.inputDeviceManager.rememberCurrentDevice("setting output device");
    }
    setDefaultAudioOutput();
    return;
  }
  startProgress();
  services_.loop.runOnWorker([self = shared_from_this(), found] {
    auto& loop = self->services_.loop;
    if (found->isConnected()) {
      if (self->connectionOnlyMode()) {
        connectLog()([&] { return "Tried to disconnect from " + self->description() + " but in connection-only mode"; });
        loop.post([self] { self->stopProgress(); });
        return;
      }
      loop.post([self] { self->outputFixer_->willManuallyDisconnect(); });
      self->closeConnection();
    } else {
      self->services_.inputDeviceManager.rememberCurrentDevice("about to connect from Lanternbud");
      self->openConnection();
    }
    loop.post([self] { self->updateConnectionState(ConnectionUpdateReason::toggle()); });
  });
}

void DeviceSetting::openConnection() {
  auto found = device();
  if (!found) return;
  isManuallyInitiatedConnection_ = true;
  IOReturn result;
  if (services_.tunables(tunable::TrySyncConnectFirst)) {
    if (found->isConnected()) {
      PXR_LOG(connectLog(), "Already connected to", description(), outputFixer_->state());
      return;
    }
    PXR_LOG(connectLog(), "Begin sync connecting to", description(), outputFixer_->state());
    result = found->openConnection();
    if (pxrIsSuccess(result)) {
      PXR_LOG(connectLog(), "End sync connecting to", description(), outputFixer_->state());
      return;
    }
    connectLog()([&] { return "Error sync connecting to " + description() + " with status: " + pxrDescription(result); });
  } else {
    PXR_LOG(connectLog(), "Begin connecting to", description());
    result = found->openConnection(10000);
    if (pxrIsSuccess(result)) {
      PXR_LOG(connectLog(), "End connecting to", description());
      return;
    }
  }

  PXR_LOG(connectLog(), "Retry connecting to", description());
  result = found->openConnection(20000);
  if (pxrIsSuccess(result)) {
    connectLog()([&] { return "End retry connecting to " + description() + " with status: " + pxrDescription(result); });
    return;
  }
  if (pxrIsBluetoothAlreadyConnected(result)) {
    pxrLogError("It looks like " + description() + " is already connected: " + pxrDescription(result));
  } else if (pxrIsMontereySpuriousBluetoothTimeout(result) && services_.operatingSystem.hasSpuriousConnectionTimeouts()) {
    pxrLogError("Error " + pxrDescription(result) + " connecting to " + description() +
                " on Monterey; will wait and see if this ends up being spurious.");
    services_.loop.postAfter(services_.tunables(tunable::ConnectionWaitInterval),
                             [self = shared_from_this(), found, result] { self->checkForDelayedConnection(found, result); });
  } else {
    pxrLogError("Error " + pxrDescription(result) + " connecting to " + description());
    showConnectionErrorAlert(result);
  }
}

void DeviceSetting::checkForDelayedConnection(const std::shared_ptr<BluetoothDevice>& found, const IOReturn& result) {
  if (found->isConnected()) {
    pxrLogError("Error " + pxrDescription(result) + " connecting to " + description() + " was spurious");
    return;
  }
  pxrLogError("Error " + pxrDescription(result) + " connecting to " + description() + " was real");
  showConnectionErrorAlert(result);
}

void DeviceSetting::closeConnection() {
  auto found = device();
  if (!found) return;
  PXR_LOG(connectLog(), "Begin disconnecting from", description());
  auto result = found->closeConnection();
  if (pxrIsSuccess(result)) {
    connectLog()([&] { return "End disconnecting from " + description() + " with status: " + pxrDescription(result); });
    services_.loop.post([self = shared_from_this()] { self->outputFixer_->didDisconnect(); });
  } else {
    pxrLogError("Error " + pxrDescription(result) + " disconnecting from " + description());
  }
}

void DeviceSetting::showConnectionErrorAlert(const IOReturn& result) {
  services_.loop.post([self = shared_from_this(), result] {
    const bool settled = !self->outputFixer_->isRetrying();
    self->outputFixer_->didFailToConnect();
    self->stopProgress();
    // While the fixer is itself closing and reopening the connection, its
    // failures are no news to the user.
    if (!settled) return;
    if (self->services_.alerts.runModal(self->connectionErrorAlert(result)) == 1) {
      self->services_.alerts.openHelpPage("not-connecting");
    }
  });
}

Alert DeviceSetting::connectionErrorAlert(const IOReturn& result) const {
  Alert alert;
  alert.message = formatted(localized("Your Mac could not connect to “%@”."), deviceNameOrUnknown());
  alert.buttons = {localized("OK"), localized("Help")};
  if (pxrIsBluetoothTimeout(result)) {
    alert.informativeText = localized("The Bluetooth connection timed out.");
  } else if (pxrIsBluetoothOffline(result)) {
    alert.informativeText =
        services_.operatingSystem.usesSettingsWording()
            ? localized("Please make sure that Bluetooth is enabled in the Bluetooth pane in System Settings.")
            : localized("Please make sure that Bluetooth is On in the Bluetooth pane in System Preferences.");
  } else {
    alert.informativeText = formatted(localized("Bluetooth reported error %@."), pxrDescription(result));
  }
  return alert;
}

std::optional<SettingsValue::Dictionary> DeviceSetting::deviceCachedInfo() {
  if (auto cached = services_.deviceInfoCache.cachedValue(this); cached && cached->isCurrent()) return cached->value;
  auto fresh = deviceFreshInfo();
  services_.deviceInfoCache.setValue(this, fresh);
  return fresh;
}

// Linux answers as the newest system: the battery sources. The older
// systems' preferences cache does not exist here, so switching the sources
// off leaves no information.
std::optional<SettingsValue::Dictionary> DeviceSetting::deviceFreshInfo() {
  auto found = device();
  if (!found || services_.tunables(tunable::DisableMontereyBatteryInfo)) return std::nullopt;
  return services_.batteryInfo.fallbackInfo(*found);
}

std::optional<int> DeviceSetting::batteryLevel() {
  auto info = deviceCachedInfo();
  auto type = info ? BatteryType::from(*info) : std::nullopt;
  if (!type) return std::nullopt;
  if (type->kind != BatteryType::Kind::leftRight) return type->level;
  if (type->level != 0 && type->right != 0) return std::min(type->level, type->right);
  return std::max(type->level, type->right);
}

std::optional<std::string> DeviceSetting::batteryLevelFormat() {
  auto info = deviceCachedInfo();
  auto type = info ? BatteryType::from(*info) : std::nullopt;
  if (!type) return std::nullopt;
  if (type->kind != BatteryType::Kind::leftRight) return std::to_string(type->level) + "%%";
  std::string text;
  if (type->level != 0) text = localized("L") + ": " + std::to_string(type->level) + "%%";
  if (type->right != 0) text += (text.empty() ? "" : " ") + localized("R") + ": " + std::to_string(type->right) + "%%";
  return text;
}

std::string DeviceSetting::batteryLevelString() {
  std::string text = localized("Unknown");
  auto found = device();
  if (found && found->isConnected()) {
    if (auto format = batteryLevelFormat()) text = *format;
  }
  return formatted("%@: " + text, localized("Battery Level"));
}

std::optional<std::string> DeviceSetting::statusString() {
  auto found = device();
  if (!found) return std::nullopt;
  const bool connected = found->isConnected();
  std::string state = localized(connected ? "Connected" : "Disconnected");
  if (outputFixer_->isRetrying()) state = localized("Fixing Sound Output");
  if (connected && services_.tunables(tunable::EnableAudioOutput) && isAudioOutput_ == false &&
      isPotentialAudioOutput_ == true) {
    state += localized(" (Not Sound Output)");
  }
  return deviceNameOrUnknown() + " - " + state;
}

std::optional<std::string> DeviceSetting::toolTipString() {
  auto status = statusString();
  if (!status) return std::nullopt;
  std::string text = *status + ".";
  auto found = device();
  if (found && found->isConnected()) text += "\n" + batteryLevelString() + ".";
  return text;
}

} // namespace lb

