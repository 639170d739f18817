#include "core/AppDelegate.h"

#include "core/LogAreas.h"
#include "core/LoginLauncher.h"
#include "core/SettingKeys.h"

namespace lb {

int AppDelegate::processEntry(const UserDefaults::Arguments& commandLine,
                              const std::function<void(const std::string& address)>& printBatteryInfo,
                              const std::function<void()>& runApplication) {
  if (auto address = commandLine.find("PrintBatteryInfo"); address != commandLine.end()) {
    printBatteryInfo(address->second);
    return 0;
  }
  runApplication();
  return 0;
}

void AppDelegate::applicationDidFinishLaunching() {
  trayPainter_ = std::make_unique<TrayPainter>(services_.statusBar, services_.defaults, services_.tunables);
  deviceSettingManager_ = std::make_unique<DeviceSettingManager>(services_);
  if (deviceSettingManager_->deviceSettingList().empty()) {
    PXR_LOG(dockLog(), "Showing preferences because no devices have been added:",
            describe(services_.defaults.object(settingKey::devices)));
    showPreference();
    PXR_LOG(dockLog(), "Done showing preferences.");
  } else {
    if (services_.defaults.boolValue(settingKey::hideDockIcon, false)) {
      PXR_LOG(dockLog(), "Hiding Dock icon");
      services_.windows.setActivationPolicy(ActivationPolicy::accessory);
    }
    for (const auto& setting : deviceSettingManager_->deviceSettingList()) setting->setupStatusItem();
  }
  LoginLauncher::updateFromDefaults(services_.defaults, services_.loginItems);
  // A choice changed while running (from a script or the window) applies at once.
  loginChoice_ = services_.defaults.addChangeListener([this](const std::string& key) {
    if (key == settingKey::launchAtLogin) LoginLauncher::updateFromDefaults(services_.defaults, services_.loginItems);
  });
}

bool AppDelegate::applicationShouldHandleReopen() {
  PXR_LOG(dockLog(), "Showing preferences because of reopen.");
  showPreference();
  return true;
}

void AppDelegate::applicationWillTerminate() {
  if (!deviceSettingManager_) return;
  deviceSettingManager_->synchronize();
  deviceSettingManager_->unregister();
}

void AppDelegate::showPreference() { services_.windows.showPreferences(std::nullopt); }

} // namespace lb
