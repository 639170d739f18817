#pragma once

#include "app/DemoWorld.h"
#include "core/Services.h"
#include "linux/system/IcuNameCollator.h"
#include "ports/GlobalKeys.h"
#include "linux/system/LinuxOperatingSystem.h"
#include "linux/system/QtEventLoop.h"
#include "linux/system/SpawnScriptRunner.h"
#include "linux/battery/UPowerRegistry.h"
#include "linux/desktop/DesktopNotifications.h"
#include "linux/desktop/DesktopSettingsPrograms.h"
#include "linux/report/LinuxDiagnosticReporter.h"
#include "linux/xdg/XdgScriptsFolder.h"
#include "ui/TrayHost.h"
#include "ui/DesktopWindows.h"
#include "ui/SvgImages.h"

#include <memory>
#include <string>

namespace lb {

class PulseAudioSystem;

// The ports the program runs on, wired into one Services: the real Linux
// platform, or the demo's simulated devices and sound in real time. Either
// way the event loop is Qt's and scripts are real files and processes.
class Platform {
public:
  // What the desktop offers: a display for windows and dialogs, a tray for
  // the devices. Without a tray the devices only go to the log; without a
  // display, alerts do too.
  struct Desktop {
    bool display;
    TrayHost::Kind tray;
  };
  // BlueZ on the system bus, UPower, libpulse, the XDG autostart entry.
  static std::unique_ptr<Platform> real(UserDefaults& defaults, Tunables& tunables, const std::string& helperPath,
                                        Desktop desktop);
  // Simulated devices; scripts live in a folder of their own and start at
  // login is never touched.
  static std::unique_ptr<Platform> demo(UserDefaults& defaults, Tunables& tunables, Desktop desktop);

  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  ~Platform();

  // "Using BlueZ on the system bus" or "Using simulated devices"
  const std::string& backend() const { return backend_; }
  Services& services() { return *services_; }
  DesktopWindows& windows() { return windows_; }
  // The report reads this machine's logs and services, in the demo too.
  DiagnosticReporter& reporter() { return reporter_; }
  // The demo's world; none on the real platform.
  DemoWorld* demoWorld() const { return demo_.get(); }
  // Scripts still running end with the program (SIGTERM, SIGKILL after 2 s).
  void endScripts() { scriptRunner_.endRunning(Seconds(2)); }
  // Whether the workers (connects, disconnects) finished within `limit`.
  bool waitForWorkers(Seconds limit) { return loop_.waitForWorkers(limit); }
  // Requests sent to the sound server so far; none in the demo.
  std::optional<std::uint64_t> soundServerRequests() const;

private:
  Platform(UserDefaults& defaults, Tunables& tunables, std::string backend, std::filesystem::path scriptsFolder,
           Desktop desktop);
  // The warnings' state and the battery histories are kept in the state
  // folder, under names that begin with the prefix ("demo-" for the demo).
  void wire(Bluetooth& bluetooth, AudioSystem& audio, BatterySources& batterySources, LoginItems& loginItems,
            const std::string& stateNamePrefix);

  UserDefaults& defaults_;
  Tunables& tunables_;
  std::string backend_;
  QtEventLoop loop_;
  std::unique_ptr<StatusBar> statusBar_;
  SvgImages images_;
  DesktopWindows windows_;
  std::unique_ptr<GlobalKeys> globalKeys_;
  std::unique_ptr<ShortcutBinder> shortcuts_;
  std::unique_ptr<Alerts> alerts_;
  IcuNameCollator collator_;
  LinuxOperatingSystem operatingSystem_;
  DesktopSettingsPrograms desktopSettings_;
  DesktopNotifications notifications_{QDBusConnection::sessionBus()};
  XdgScriptsFolder scriptsFolder_;
  SpawnScriptRunner scriptRunner_;
  LinuxDiagnosticReporter reporter_{LinuxDiagnosticReporter::Sources::thisMachine()};

  // The platform's own: one set or the other.
  std::unique_ptr<QObject> bluez_;
  std::unique_ptr<UPowerRegistry> upower_;
  std::unique_ptr<BatterySources> batterySources_;
  std::unique_ptr<PulseAudioSystem> pulse_;
  std::unique_ptr<LoginItems> loginItems_;
  std::unique_ptr<DemoWorld> demo_;

  std::unique_ptr<AudioHardware> audioHardware_;
  std::unique_ptr<OutputDeviceManager> outputDeviceManager_;
  std::unique_ptr<InputDeviceManager> inputDeviceManager_;
  std::unique_ptr<BatteryInfo> batteryInfo_;
  std::unique_ptr<DeviceInfoCache> deviceInfoCache_;
  std::unique_ptr<SettingsStore> warningState_;
  std::unique_ptr<LowBatteryWarnings> lowBatteryWarnings_;
  std::unique_ptr<BatteryHistoryFiles> historyFiles_;
  std::unique_ptr<BatteryHistories> batteryHistories_;
  std::unique_ptr<Services> services_;
};

} // namespace lb
