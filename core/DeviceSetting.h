#pragma once

#include "core/ConnectionControl.h"
#include "core/ConnectionOutcome.h"
#include "core/ConnectionTracker.h"
#include "core/ConnectionUpdateReason.h"
#include "core/DeviceCommands.h"
#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/DevicePresentation.h"
#include "core/DeviceScripts.h"
#include "core/DeviceStatusItem.h"
#include "core/MenuBarIconOption.h"
#include "core/OutputFixer.h"
#include "core/Services.h"
#include "core/SettingKeys.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace lb {

class DeviceSettingManager;

// One device the user has added, as the registry and the rest of the
// program see it: its options, its commands and its observed state. The
// work is done by collaborators, each given only what it uses (the
// DeviceHandle, the options, the sibling parts it works with):
//   DeviceOptions       the saved options (locked: the worker reads them)
//   ConnectionControl   the blocking connect and disconnect, on a worker
//   ConnectionTracker   following the connection and reacting to changes
//   DevicePresentation  battery levels, status texts, the picture chosen
//   DeviceStatusItem    the tray item, its spinner, clicks and shortcut
//   DeviceScripts       the connect and disconnect scripts
// Main thread, except where ConnectionControl says otherwise.
class DeviceSetting : public DeviceHandle, public DeviceCommands, public std::enable_shared_from_this<DeviceSetting> {
public:
  // A device setting from its saved options; any dictionary will do.
  static std::shared_ptr<DeviceSetting> make(Services& services, SettingsValue::Dictionary options,
                                             DeviceSettingManager* registry = nullptr);
  // A new device setting for a device the user added.
  static std::shared_ptr<DeviceSetting> make(Services& services, const BluetoothDevice& device, std::int64_t ID,
                                             DeviceSettingManager* registry = nullptr);

  DeviceSetting(const DeviceSetting&) = delete;
  DeviceSetting& operator=(const DeviceSetting&) = delete;

  // The options dictionary, which is also the saved form of the device.
  SettingsValue::Dictionary options() const { return options_.snapshot(); }

  std::int64_t deviceID() const { return options_.deviceID(); }
  // The platform's device for the stored address; none, with an error line,
  // when no address is stored.
  std::shared_ptr<BluetoothDevice> device() const override;
  void setDevice(const BluetoothDevice* device);

  // The name, looked up once and then remembered.
  std::optional<std::string> deviceName() const override;
  std::string deviceNameOrUnknown() const override;
  // The same for people to read: "Unknown device" in their language where
  // no name is known.
  std::string displayName() const;
  // "<DeviceSetting: name>"
  std::string description() const override;
  void storeDeviceName(const std::string& name) { options_.set(deviceOption::deviceName, name); }

  MenuBarIconOption icon() const { return options_.icon(); }
  void setIcon(MenuBarIconOption icon);
  bool isActive() const { return options_.isActive(); }
  // An inactive device has no tray item and no shortcut.
  void setActive(bool active);
  bool connectionOnlyMode() const { return options_.connectionOnlyMode(); }
  void setConnectionOnlyMode(bool value) {
    options_.set(deviceOption::connectOnlyMode, value);
    optionsChanged();
  }
  bool keepDefaultAudioInput() const { return options_.keepDefaultAudioInput(); }
  void setKeepDefaultAudioInput(bool value) {
    options_.set(deviceOption::keepDefaultAudioInput, value);
    optionsChanged();
  }
  bool runShellScriptAfterConnected() const { return options_.runsScript(ScriptType::connected); }
  void setRunShellScriptAfterConnected(bool value) {
    options_.set(deviceOption::runShellScriptAfterConnected, value);
    optionsChanged();
  }
  bool runShellScriptAfterDisconnected() const { return options_.runsScript(ScriptType::disconnected); }
  void setRunShellScriptAfterDisconnected(bool value) {
    options_.set(deviceOption::runShellScriptAfterDisconnected, value);
    optionsChanged();
  }
  bool showBatteryLevel() const { return options_.showBatteryLevel(); }
  void setShowBatteryLevel(bool value);
  // Unset, on unless the desktop warns by itself.
  bool warnsOfLowBattery() const { return presentation_.warnsOfLowBattery(); }
  void setWarnsOfLowBattery(bool value);
  // The script texts; "#!/bin/sh\n" when there is none. Nothing removes one.
  std::string shellScriptAfterConnected() const { return scripts_.text(ScriptType::connected); }
  void setShellScriptAfterConnected(const std::optional<std::string>& text) {
    scripts_.setText(ScriptType::connected, text);
  }
  std::string shellScriptAfterDisconnected() const { return scripts_.text(ScriptType::disconnected); }
  void setShellScriptAfterDisconnected(const std::optional<std::string>& text) {
    scripts_.setText(ScriptType::disconnected, text);
  }

  // The settings keys of the device's keyboard shortcut, now and before.
  std::string shortCutKey() const { return SettingKeys::shortcutKey(deviceID()); }
  std::string oldShortCutKey() const { return SettingKeys::oldShortcutKey(deviceID()); }

  // Observed state: unknown until first seen.
  std::optional<bool> isConnected() const { return tracker_.isConnected(); }
  std::optional<bool> isAudioOutput() const { return tracker_.isAudioOutput(); }
  std::optional<bool> isPotentialAudioOutput() const { return tracker_.isPotentialAudioOutput(); }
  bool isManuallyInitiatedConnection() const { return connection_.isManuallyInitiatedConnection(); }
  void setManuallyInitiatedConnection(bool value) { connection_.setManuallyInitiatedConnection(value); }

  // The tray item: created for an active device, with its shortcut.
  StatusItem* statusItem() const { return statusItem_.item(); }
  void setupStatusItem();
  void removeStatusItem();
  void updateButtonImage() override;
  void startProgress() { statusItem_.startProgress(); }
  void stopProgress() override;
  std::weak_ptr<const void> lifetime() const override { return weak_from_this(); }

  // `unregister` ends the device's presence in the system (notification,
  // tray item, shortcut).
  void registerNotifications() { tracker_.registerNotifications(); }
  void unregister() { removeStatusItem(); }
  void deviceConnected(const BluetoothNotification& notification) { tracker_.deviceConnected(notification); }
  void updateConnectionState(const ConnectionUpdateReason& reason) { tracker_.updateConnectionState(reason); }

  // The one way in for a click, a shortcut press and a script: connects a
  // disconnected device and disconnects a connected one. A click that asks
  // for the menu (Control, the right button, connect-only rules) opens it
  // instead; a connected device that could be, and is not, the sound output
  // becomes it instead of disconnecting. While an attempt is under way,
  // requests are ignored, as a disabled button would ignore them.
  ConnectionOutcome toggleConnection(const std::optional<StatusItemClick>& click = std::nullopt) override;
  // Scripts' plain verbs: a connect as a click makes it (the output
  // follows), and a disconnect that always disconnects.
  ConnectionOutcome connect() override { return request(true); }
  ConnectionOutcome disconnect() { return request(false); }
  // The menu's choices: a disconnect that connect-only mode allows, and
  // making a connected device the sound output.
  ConnectionOutcome disconnectFromMenu() override { return request(false, std::nullopt, true); }
  void makeSoundOutput() override;
  // Blocking, on a worker (see ConnectionControl).
  void openConnection() { connection_.openConnection(); }
  void closeConnection() { connection_.closeConnection(); }
  Alert connectionErrorAlert(const IOReturn& result) const { return connection_.connectionErrorAlert(result); }

  void setDefaultAudioOutput() { tracker_.setDefaultAudioOutput(); }
  void reactToSettingAudioOutput() { tracker_.reactToSettingAudioOutput(); }

  void runScript(ScriptType type) { scripts_.run(type); }
  // The first failure, the script's or the file system's, ends the save.
  Result<> saveScripts() { return scripts_.save(); }

  // Battery levels and status texts, for the tray, its menu and scripts.
  std::optional<int> batteryLevel() { return presentation_.batteryLevel(); }
  std::optional<std::string> batteryLevelFormat() { return presentation_.batteryLevelFormat(); }
  std::string batteryLevelString(BatteryReading reading = BatteryReading::ifStale) {
    return presentation_.batteryLevelString(reading);
  }
  std::optional<std::string> statusString() { return presentation_.statusString(); }
  std::optional<std::string> toolTipString() { return presentation_.toolTipString(); }
  std::string summaryString() { return presentation_.summaryString(); }
  const BatteryHistory* batteryHistory() { return presentation_.batteryHistory(); }
  std::optional<std::string> timeLeftText() { return presentation_.timeLeftText(); }

  // What scripts see and do (DeviceSettingScripting.cpp).
  std::string scriptingName() const { return deviceName().value_or(""); }
  std::int64_t scriptingID() const { return deviceID(); }
  std::optional<std::string> scriptingAddress() const;
  // The address as saved, whether or not the system knows the device.
  std::optional<std::string> storedAddress() const { return options_.storedAddress(); }
  std::optional<BluetoothAddress> address() const { return options_.address(); }
  // Only while connected, even when a level is cached.
  std::optional<int> scriptingBatteryLevel(BatteryReading reading = BatteryReading::ifStale);
  std::string scriptingIconName() const { return std::string(rawValue(icon())); }
  bool scriptingIsConnected() const;
  // Setting the other value toggles exactly as a click does; setting the
  // current value does nothing. The change itself follows later.
  void setScriptingIsConnected(bool connected);
  std::string scriptingStatus() { return statusString().value_or(""); }
  // PNG data, empty when missing: the picture the tray item shows now, the
  // outline picture and the filled one.
  std::vector<unsigned char> scriptingIconData() const;
  std::vector<unsigned char> scriptingDisconnectedIconData() { return pngOf(presentation_.disconnectedImage()); }
  std::vector<unsigned char> scriptingConnectedIconData() { return pngOf(presentation_.connectedImage()); }

  OutputFixer& outputFixer() { return outputFixer_; }
  ConnectionControl& connection() { return connection_; }
  ConnectionTracker& tracker() { return tracker_; }
  DevicePresentation& presentation() { return presentation_; }
  std::optional<Date> lastConnectionScriptRun() const { return tracker_.lastConnectionScriptRun(); }
  bool hasFastTimer() const { return tracker_.hasFastTimer(); }

private:
  // Its name, or its address, when the system knows the device.
  std::optional<std::string> knownName() const;
  DeviceSetting(Services& services, SettingsValue::Dictionary options, DeviceSettingManager* registry);
  void start();
  void optionsChanged();
  // `wanted` none: the other state.
  ConnectionOutcome request(std::optional<bool> wanted, const std::optional<StatusItemClick>& click = std::nullopt,
                            bool evenInConnectOnlyMode = false);
  static std::vector<unsigned char> pngOf(const std::shared_ptr<Image>& image) {
    return image ? image->png() : std::vector<unsigned char>{};
  }

  Bluetooth& bluetooth_;
  DeviceSettingManager* registry_;
  DeviceOptions options_;
  // Worker log lines name the device too.
  mutable std::mutex nameMutex_;
  mutable std::atomic<bool> toldNoAddress_ = false;
  mutable std::optional<std::string> cachedDeviceName_;

  OutputFixer outputFixer_;
  DeviceScripts scripts_;
  ConnectionControl connection_;
  ConnectionTracker tracker_;
  DevicePresentation presentation_;
  DeviceStatusItem statusItem_;
};

} // namespace lb
