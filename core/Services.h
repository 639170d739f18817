#pragma once

#include "core/BatteryHistories.h"
#include "core/BatteryInfo.h"
#include "core/InputDeviceManager.h"
#include "core/LowBatteryWarnings.h"
#include "core/OutputDeviceManager.h"
#include "core/ShortcutBinder.h"
#include "core/Tunables.h"
#include "core/UserDefaults.h"
#include "foundation/PXRExpiringCache.h"
#include "ports/Alerts.h"
#include "ports/Bluetooth.h"
#include "ports/DesktopSettings.h"
#include "ports/EventLoop.h"
#include "ports/Images.h"
#include "ports/LoginItems.h"
#include "ports/NameCollator.h"
#include "ports/OperatingSystem.h"
#include "ports/ScriptRunner.h"
#include "ports/ScriptsFolder.h"
#include "ports/StatusBar.h"
#include "ports/Windows.h"

namespace lb {

// Each device's information (battery levels), by its DeviceHandle, reused
// for a while.
using DeviceInfoCache = PXRExpiringCache<const void*, std::optional<SettingsValue::Dictionary>>;

// What the program's objects are given to work with: the platform's ports
// and the user's settings. Built once by each program's composition root,
// and outliving everything that refers to it.
struct Services {
  EventLoop& loop;
  Bluetooth& bluetooth;
  StatusBar& statusBar;
  Images& images;
  Windows& windows;
  ShortcutBinder& shortcuts;
  LoginItems& loginItems;
  ScriptsFolder& scriptsFolder;
  ScriptRunner& scriptRunner;
  NameCollator& collator;
  Alerts& alerts;
  OperatingSystem& operatingSystem;
  DesktopSettings& desktopSettings;
  UserDefaults& defaults;
  Tunables& tunables;
  OutputDeviceManager& outputDeviceManager;
  InputDeviceManager& inputDeviceManager;
  BatteryInfo& batteryInfo;
  DeviceInfoCache& deviceInfoCache;
  LowBatteryWarnings& lowBatteryWarnings;
  BatteryHistories& batteryHistories;
};

} // namespace lb
