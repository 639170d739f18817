#pragma once

#include "core/DeviceSettingManager.h"
#include "core/TrayTone.h"
#include "core/Services.h"

#include <functional>
#include <memory>
#include <string>

namespace lb {

// The program's life: what happens between the start and the first event,
// when the user opens the running program again, and at the end.
class AppDelegate {
public:
  explicit AppDelegate(Services& services) : services_(services) {}

  // The process entry. With "-PrintBatteryInfo <address>" on the command
  // line (never from the stored settings) it prints that device's battery
  // information and nothing else starts; otherwise it runs the application.
  // The exit status is 0 either way.
  static int processEntry(const UserDefaults::Arguments& commandLine,
                          const std::function<void(const std::string& address)>& printBatteryInfo,
                          const std::function<void()>& runApplication);

  // Launch: load the registry; with no devices open the preferences, with
  // devices put them in the tray; then bring the login item into line.
  void applicationDidFinishLaunching();
  // The user opened the running program again: show the preferences.
  bool applicationShouldHandleReopen();
  // Saves the device list, then takes every device out of the system.
  void applicationWillTerminate();

  void showPreference();
  void quit() { services_.windows.terminate(); }

  DeviceSettingManager* deviceSettingManager() const { return deviceSettingManager_.get(); }

private:
  Services& services_;
  std::unique_ptr<TrayPainter> trayPainter_;
  std::unique_ptr<DeviceSettingManager> deviceSettingManager_;
  std::unique_ptr<NotificationRegistration> loginChoice_;
};

} // namespace lb
