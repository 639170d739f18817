#pragma once

#include "core/AudioChangeRelay.h"
#include "core/DeviceSetting.h"
#include "core/ScriptSaver.h"
#include "core/Services.h"

#include <functional>
#include <memory>
#include <vector>

namespace lb {

// The registry of the devices the user has added: the name-sorted list, its
// persistence under "devices", device IDs, adding and removing, the icon
// timer, and the system's connect notifications handed to the devices they
// concern. One per program, owned by its application delegate.
class DeviceSettingManager {
public:
  static constexpr const char* currentSettingVersion = "2.8.2";
  // IDs run from 1 to this; they name script files and interface paths.
  static constexpr std::int64_t maximumDeviceID = std::int64_t{1} << 31;

  // Loads the saved devices, stamps the setting version, listens for
  // connections and starts the 10-second icon timer.
  explicit DeviceSettingManager(Services& services);
  // Stops the timer, unregisters everything and saves.
  ~DeviceSettingManager();

  DeviceSettingManager(const DeviceSettingManager&) = delete;
  DeviceSettingManager& operator=(const DeviceSettingManager&) = delete;

  const std::vector<std::shared_ptr<DeviceSetting>>& deviceSettingList() const { return list_; }
  std::int64_t maxDeviceID() const { return maxDeviceID_; }
  bool firstLaunch() const { return firstLaunch_; }

  // Writes every device's options, with its current name, under "devices".
  // Fails when the settings cannot be written; the settings say why.
  Result<> synchronize();

  // Why a device was not added, or not kept: its address does not read as
  // one, the system knows no device there, it is in the list already, or it
  // was added but the list could not be saved (it is in the list until the
  // program quits, and the next save that works keeps it).
  enum class AddError { invalid, unknown, alreadyAdded, notSaved };
  // Adds the paired device at `address`, written in any form an address is
  // read in, with its tray item, and saves the list.
  Result<DeviceSetting&, AddError> add(const std::string& address);
  enum class RemoveError { unknown, notSaved };
  // Removes the device with this ID, with its tray item, scripts and
  // shortcut, and saves the list.
  Result<void, RemoveError> remove(std::int64_t deviceID);
  // The added device at `address`, written in any form; none when there is
  // none, or the text is no address.
  DeviceSetting* find(std::string_view address) const;
  // Saves after a change to the options of one of the devices.
  void optionsChanged(const DeviceSetting& setting);

  // Orders the list by name as the user's language does, ignoring case;
  // equal names keep their order, and a device without a name goes by ID.
  void sort();
  // Every 10 seconds: sort, then redraw every tray item.
  void updateItemIcon();

  // The one-time welcome, half a second after the first tray item of a
  // program that started with no devices.
  void showLandingPopover(DeviceSetting& setting);

  void deviceConnected(const BluetoothNotification& notification, const std::shared_ptr<BluetoothDevice>& device);

  // Ends every device's presence in the system and stops listening.
  void unregister();

  // Listeners are told whenever something shown of a device may have
  // changed (its redraw: the device is given), or the list itself (a device
  // added or removed, a new order: none is given). What mirrors the devices
  // to the outside (the scripting interface) compares and shows from there.
  // Destroying the registration ends the listening.
  using ChangeListener = std::function<void(const DeviceSetting* changed)>;
  std::unique_ptr<NotificationRegistration> addChangeListener(ChangeListener listener) {
    return listeners_.add(std::move(listener));
  }
  void noteChange(const DeviceSetting* changed = nullptr) const { listeners_.notify(changed); }

private:
  // The one comparison of addresses: the same device however either is written.
  static bool holds(const DeviceSetting& setting, std::string_view address);
  void checkMigration();
  void load();
  void giveValidIDs(std::vector<SettingsValue::Dictionary>& entries);
  std::string keyForUnreadableDevices() const;

  Services& services_;
  ScriptSaver scriptSaver_;
  std::vector<std::shared_ptr<DeviceSetting>> list_;
  bool firstLaunch_ = false;
  std::int64_t maxDeviceID_ = 1;
  std::unique_ptr<NotificationRegistration> connectionObserver_;
  std::unique_ptr<PXRTimer> statusTimer_;
  Listeners<const DeviceSetting*> listeners_;
  // Connected devices look again when the audio devices change: a headset's
  // sink appears a moment after its link.
  AudioChangeRelay audioChanges_{services_.outputDeviceManager, services_.loop, [this] {
                                   for (const auto& setting : list_) setting->tracker().audioDevicesChanged();
                                 }};
};

} // namespace lb
