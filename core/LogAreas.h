#pragma once

#include "foundation/PXRLog.h"

#include <string_view>

namespace lb {

// The program's log areas. Each is switched on by a true Boolean under its
// name in the user's settings, e.g. `lanternbud -LogConnect YES` for one run.
// Each is created once, at first use, from whichever thread comes first.
// Every area: its function, its name, and what it tells.
#define LB_LOG_AREAS(X)                                                                                                \
  X(connectLog, "LogConnect")                               /* toggling, opening, closing; reactions */                \
  X(isConnectedLog, "LogIsConnected")                       /* each connection-state update */                         \
  X(notificationsLog, "LogConnectNotifications")            /* a device's connect/disconnect notifications */          \
  X(scriptLog, "LogScript")                                 /* running connect and disconnect scripts */               \
  X(iconLog, "LogMenuBarIcon")                              /* redrawing a tray icon */                                \
  X(hotKeyLog, "LogHotKey")                                 /* keyboard-shortcut presses */                            \
  X(connectionOnlyModeLog, "LogConnectionOnlyMode")         /* whether a click shows the menu or toggles */            \
  X(bluetoothNotificationsLog, "LogBluetoothNotifications") /* system-wide connect notifications */                    \
  X(inputLog, "LogAudioInput")                              /* remembering and restoring the sound input */            \
  X(outputLog, "LogAudioOutput")                            /* setting the sound output */                             \
  X(outputFixerLog, "LogOutputFixer")                       /* the output fixer's decisions and retries */             \
  X(scriptSaveLog, "LogScriptSave")                         /* the scripts folder, access and saving */                \
  X(batteryInfoLog, "LogBatteryInfo")                       /* battery sources */                                      \
  X(batteryInfoIterationLog, "LogBatteryInfoIteration")     /* walking the battery registry */                         \
  X(batteryInfoDetailLog, "LogBatteryInfoDetail")           /* raw values found while reading batteries */             \
  X(lowEnergyLog, "LogLowEnergyBatteryInfo")                /* the Low Energy battery reader */                        \
  X(dockLog, "LogDock")                                     /* taskbar presence and the preferences window at start */ \
  X(loginLog, "LogLogin")                                   /* launch at login */                                      \
  X(launchLog, "LogLaunch")                                 /* the program's start and end, the backend chosen */      \
  X(trayLog, "LogTray")                                     /* what the tray shows and how its clicks are taken      */

#define LB_LOG_AREA(function, name) \
  inline const PXRLog& function() { \
    static const PXRLog area(name); \
    return area;                    \
  }
LB_LOG_AREAS(LB_LOG_AREA)
#undef LB_LOG_AREA

#define LB_LOG_AREA_NAME(function, name) name,
inline constexpr std::string_view allLogAreaNames[] = {LB_LOG_AREAS(LB_LOG_AREA_NAME)};
#undef LB_LOG_AREA_NAME

} // namespace lb
