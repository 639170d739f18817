#pragma once

#include "core/BluetoothMatchable.h"
#include "core/ConnectionUpdateReason.h"
#include "core/MenuBarIconOption.h"
#include "core/OutputFixer.h"
#include "core/ScriptSaver.h"
#include "core/Services.h"
#include "foundation/PXRTimer.h"
#include "foundation/SettingsValue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace lb {

class DeviceSettingManager;

// One device the user has added: its saved options, its tray item, its
// timers and notifications, and the last observed state. Lives on the main
// thread; the options and the manual-connection flag are also read by the
// worker that connects and disconnects, so they are guarded.
class DeviceSetting : public BluetoothMatchable, public std::enable_shared_from_this<DeviceSetting> {
public:
  static constexpr const char* defaultScript = "#!/bin/sh\n";

  // A device setting from its saved options; any dictionary will do.
  static std::shared_ptr<DeviceSetting> make(Services& services, SettingsValue::Dictionary options,
                                             DeviceSettingManager* registry = nullptr);
  // A new device setting for a device the user added.
  static std::shared_ptr<DeviceSetting> make(Services& services, const BluetoothDevice& device, std::int64_t ID,
                                             DeviceSettingManager* registry = nullptr);

  DeviceSetting(const DeviceSetting&) = delete;
  DeviceSetting& operator=(const DeviceSetting&) = delete;

  // The options dictionary, which is also the saved form of the device.
  SettingsValue::Dictionary options() const;

  std::int64_t deviceID() const;
  // The platform's device for the stored address; none, with an error line,
  // when no address is stored.
  std::shared_ptr<BluetoothDevice> device() const override;
  void setDevice(const BluetoothDevice* device);

  // The name, looked up once and then remembered.
  std::optional<std::string> deviceName() const override;
  std::string deviceNameOrUnknown() const;
  // "<DeviceSetting: name>"
  std::string description() const override;
  void storeDeviceName(const std::string& name);

  MenuBarIconOption icon() const;
  void setIcon(MenuBarIconOption icon);
  bool isActive() const;
  bool connectionOnlyMode() const;
  void setConnectionOnlyMode(bool value);
  bool keepDefaultAudioInput() const;
  void setKeepDefaultAudioInput(bool value);
  bool runShellScriptAfterConnected() const;
  void setRunShellScriptAfterConnected(bool value);
  bool runShellScriptAfterDisconnected() const;
  void setRunShellScriptAfterDisconnected(bool value);
  bool showBatteryLevel() const;
  void setShowBatteryLevel(bool value);
  // The script texts; "#!/bin/sh\n" when there is none. Nothing removes one.
  std::string shellScriptAfterConnected() const { return scriptText(ScriptType::connected); }
  void setShellScriptAfterConnected(const std::optional<std::string>& text) { setScriptText(ScriptType::connected, text); }
  std::string shellScriptAfterDisconnected() const { return scriptText(ScriptType::disconnected); }
  void setShellScriptAfterDisconnected(const std::optional<std::string>& text) {
    setScriptText(ScriptType::disconnected, text);
  }

  // The settings keys of the device's keyboard shortcut, now and before.
  std::string shortCutKey() const { return "shortcutDictForDevice" + std::to_string(deviceID()); }
  std::string oldShortCutKey() const { return "shortcutForDevice" + std::to_string(deviceID()); }

  // Observed state: unknown until first seen.
  std::optional<bool> isConnected() const { return isConnected_; }
  std::optional<bool> isAudioOutput() const { return isAudioOutput_; }
  std::optional<bool> isPotentialAudioOutput() const { return isPotentialAudioOutput_; }
  bool isManuallyInitiatedConnection() const { return isManuallyInitiatedConnection_; }
  void setManuallyInitiatedConnection(bool value) { isManuallyInitiatedConnection_ = value; }

  // The tray item.
  StatusItem* statusItem() const { return statusItem_.get(); }
  void setupStatusItem();
  void removeStatusItem();
  void updateButtonImage();
  void startProgress();
  void stopProgress();

  // Notifications: (re)registers this device's disconnect notification;
  // `unregister` ends its presence in the system (notification, tray item,
  // shortcut).
  void registerNotifications();
  void unregister();
  void deviceConnected(const BluetoothNotification& notification);
  void deviceDisconnected(const BluetoothNotification& notification, std::shared_ptr<BluetoothDevice> device);

  // The one place where a change of the connection is noticed.
  void updateConnectionState(const ConnectionUpdateReason& reason);

  // A click, the shortcut or a script asks to connect or disconnect. A
  // click that asks for the menu (right click, or connect-only rules) opens
  // it instead.
  void toggleConnection(bool menuRequested = false);
  // Blocking: a synchronous attempt, then a retry with a long page timeout.
  // Called from a worker.
  void openConnection();
  // Blocking; called from a worker.
  void closeConnection();
  // After a time-out that may be spurious: connected now, or a real failure.
  void checkForDelayedConnection(const std::shared_ptr<BluetoothDevice>& device, const IOReturn& result);
  // Shows the connection error dialog on the main thread, unless the output
  // fixer is in the middle of a repair.
  void showConnectionErrorAlert(const IOReturn& result);
  Alert connectionErrorAlert(const IOReturn& result) const;

  // Makes this device the sound output; a device the audio system does not
  // list goes to the output fixer.
  void setDefaultAudioOutput();
  // The output is this device now: restore the input if asked, and run the
  // connect script, spaced by "ConnectionScriptInterval".
  void reactToSettingAudioOutput();

  // Starts the script of that type if it is switched on and has a file;
  // its end is only logged.
  void runScript(ScriptType type);
  // Writes edited script texts to their files; unchanged ones are left
  // alone. Throws ScriptError or the file system's failure.
  void saveScripts();

  // Battery levels and status texts, for the tray, its menu and scripts.
  std::optional<SettingsValue::Dictionary> deviceCachedInfo();
  std::optional<SettingsValue::Dictionary> deviceFreshInfo();
  std::optional<int> batteryLevel();
  // The battery text with its percent signs doubled, "85%%" or "L: 40%% R: 70%%".
  std::optional<std::string> batteryLevelFormat();
  // "Battery Level: 85%", or "Battery Level: Unknown"
  std::string batteryLevelString();
  // "Headphones - Connected (Not Sound Output)"
  std::optional<std::string> statusString();
  // The status and, while connected, the battery, on two lines.
  std::optional<std::string> toolTipString();

  // What scripts see and do (DeviceSettingScripting.cpp).
  std::string scriptingName() const { return deviceName().value_or(""); }
  std::int64_t scriptingID() const { return deviceID(); }
  std::optional<std::string> scriptingAddress() const;
  // Only while connected, even when a level is cached.
  std::optional<int> scriptingBatteryLevel();
  std::string scriptingIconName() const { return std::string(rawValue(icon())); }
  bool scriptingIsConnected() const;
  // Setting the other value toggles exactly as a click does; setting the
  // current value does nothing. The change itself follows later.
  void setScriptingIsConnected(bool connected);
  std::string scriptingStatus() { return statusString().value_or(""); }

  OutputFixer& outputFixer() { return *outputFixer_; }
  std::optional<Date> lastConnectionScriptRun() const { return lastConnectionScriptRun_; }
  bool hasFastTimer() const { return fastTimer_ != nullptr; }

private:
  DeviceSetting(Services& services, DeviceSettingManager* registry);

  void loadScripts();
  void startTimer();
  void reactToConnection();
  void reactToDisconnection();

  std::string scriptText(ScriptType type) const;
  void setScriptText(ScriptType type, const std::optional<std::string>& text);
  bool boolOption(const char* key, bool fallback) const;
  std::optional<SettingsValue> option(const char* key) const;
  void setOption(const char* key, SettingsValue value);
  void removeOption(const char* key);
  std::optional<std::string> storedAddress() const;

  Services& services_;
  DeviceSettingManager* registry_;

  mutable std::mutex optionsMutex_;
  SettingsValue::Dictionary options_;
  std::atomic<bool> isManuallyInitiatedConnection_ = false;

  // Worker log lines name the device too.
  mutable std::mutex nameMutex_;
  mutable std::optional<std::string> cachedDeviceName_;
  std::optional<bool> isConnected_;
  std::optional<bool> isAudioOutput_;
  std::optional<bool> isPotentialAudioOutput_;
  bool showsProgress_ = false;

  std::optional<Date> lastConnectionScriptRun_;
  ScriptSaver scriptSaver_;

  std::unique_ptr<OutputFixer> outputFixer_;
  std::unique_ptr<PXRTimer> timer_;
  std::unique_ptr<PXRTimer> fastTimer_;
  std::unique_ptr<StatusItem> statusItem_;
  std::unique_ptr<NotificationRegistration> disconnectObserver_;
};

} // namespace lb
