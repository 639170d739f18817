#pragma once

#include "core/MenuBarIconOption.h"
#include "core/Services.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/SimAlerts.h"
#include "sim/SimAudioSystem.h"
#include "sim/SimBatteryHistoryFiles.h"
#include "sim/SimBatterySources.h"
#include "sim/SimBluetooth.h"
#include "sim/SimImages.h"
#include "sim/SimLoginItems.h"
#include "sim/SimNotifications.h"
#include "sim/SimDesktopSettings.h"
#include "sim/SimOperatingSystem.h"
#include "sim/SimScriptRunner.h"
#include "sim/SimScriptsFolder.h"
#include "sim/SimGlobalKeys.h"
#include "sim/SimStatusBar.h"
#include "sim/SimWindows.h"
#include "sim/SimpleNameCollator.h"
#include "sim/VirtualEventLoop.h"

namespace lb {

// The whole simulated platform in virtual time, wired into one Services:
// the composition root of tests. The settings store is handed in, so a test
// can use a real settings file.
struct SimulatedPlatform {
  explicit SimulatedPlatform(SettingsStore& store, UserDefaults::Arguments arguments = {})
      : defaults(store, std::move(arguments)), tunables(defaults) {
    for (const auto& each : allMenuBarIconOptions()) {
      const std::string name(each.rawValue);
      images.artwork[name] = images.artwork[name + "-fill"] = {22, 22};
    }
    for (int step = 0; step <= 10; ++step) images.artwork["battery-" + std::to_string(step)] = {8, 22};
    images.artwork["refresh"] = images.artwork["refresh-freestanding"] = {22, 22};
  }

  SimulatedPlatform(const SimulatedPlatform&) = delete;
  SimulatedPlatform& operator=(const SimulatedPlatform&) = delete;

  // Real ports to use in place of simulated ones.
  struct Replacements {
    EventLoop* loop = nullptr;
    Bluetooth* bluetooth = nullptr;
    ScriptsFolder* scriptsFolder = nullptr;
    ScriptRunner* scriptRunner = nullptr;
    Images* images = nullptr;
  };

  // These services with some ports real: the composition of adapter tests.
  Services servicesWith(const Replacements& real) {
    return Services{real.loop ? *real.loop : loop,
                    real.bluetooth ? *real.bluetooth : bluetooth,
                    statusBar,
                    real.images ? *real.images : images,
                    windows,
                    shortcuts,
                    loginItems,
                    real.scriptsFolder ? *real.scriptsFolder : scriptsFolder,
                    real.scriptRunner ? *real.scriptRunner : scriptRunner,
                    collator,
                    alerts,
                    operatingSystem,
                    desktopSettings,
                    defaults,
                    tunables,
                    outputDeviceManager,
                    inputDeviceManager,
                    batteryInfo,
                    deviceInfoCache,
                    lowBatteryWarnings,
                    batteryHistories};
  }

  VirtualEventLoop loop;
  UserDefaults defaults;
  Tunables tunables;
  SimBluetoothWorld world{loop};
  SimBluetooth bluetooth{world};
  SimStatusBar statusBar;
  SimImages images; // every picture of the artwork, 22 points tall
  SimWindows windows;
  SimGlobalKeys globalKeys;
  ShortcutBinder shortcuts{defaults, globalKeys};
  SimLoginItems loginItems;
  SimScriptsFolder scriptsFolder;
  SimScriptRunner scriptRunner;
  SimpleNameCollator collator;
  SimAlerts alerts;
  SimOperatingSystem operatingSystem;
  SimDesktopSettings desktopSettings;
  SimAudioSystem audio;
  AudioHardware audioHardware{audio, loop};
  OutputDeviceManager outputDeviceManager{audioHardware, tunables};
  InputDeviceManager inputDeviceManager{audioHardware, tunables, loop};
  SimBatterySources batterySources;
  BatteryInfo batteryInfo{batterySources, tunables, loop, loop.now()};
  DeviceInfoCache deviceInfoCache{loop, 1000, tunables(tunable::DeviceInfoStalenessInterval)};
  SimNotifications notifications{loop};
  InMemorySettingsStore warningState; // what the user was told of batteries
  LowBatteryWarnings lowBatteryWarnings{notifications, warningState, desktopSettings, tunables, loop};
  SimBatteryHistoryFiles historyFiles;
  BatteryHistories batteryHistories{historyFiles, loop};
  Services services = servicesWith({});
};

} // namespace lb
