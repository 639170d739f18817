#pragma once

#include "foundation/PXRLog.h"

namespace lb {

// The program's log areas. Each is switched on by a true Boolean under its
// name in the user's settings, e.g. `lanternbud -LogConnect YES` for one run.
// Each is created once, at first use, from whichever thread comes first.
#define LB_LOG_AREA(function, name) \
  inline const PXRLog& function() { \
    static const PXRLog area(name); \
    return area;                    \
  }

LB_LOG_AREA(connectLog, "LogConnect")                               // toggling, opening, closing; reactions
LB_LOG_AREA(isConnectedLog, "LogIsConnected")                       // each connection-state update
LB_LOG_AREA(notificationsLog, "LogConnectNotifications")            // a device's connect/disconnect notifications
LB_LOG_AREA(scriptLog, "LogScript")                                 // running connect and disconnect scripts
LB_LOG_AREA(iconLog, "LogMenuBarIcon")                              // redrawing a tray icon
LB_LOG_AREA(hotKeyLog, "LogHotKey")                                 // keyboard-shortcut presses
LB_LOG_AREA(connectionOnlyModeLog, "LogConnectionOnlyMode")         // whether a click shows the menu or toggles
LB_LOG_AREA(bluetoothNotificationsLog, "LogBluetoothNotifications") // system-wide connect notifications
LB_LOG_AREA(inputLog, "LogAudioInput")                              // remembering and restoring the sound input
LB_LOG_AREA(outputLog, "LogAudioOutput")                            // setting the sound output
LB_LOG_AREA(outputFixerLog, "LogOutputFixer")                       // the output fixer's decisions and retries
LB_LOG_AREA(scriptSaveLog, "LogScriptSave")                         // the scripts folder, access and saving
LB_LOG_AREA(batteryInfoLog, "LogBatteryInfo")                       // battery sources
LB_LOG_AREA(batteryInfoIterationLog, "LogBatteryInfoIteration")     // walking the battery registry
LB_LOG_AREA(batteryInfoDetailLog, "LogBatteryInfoDetail")           // raw values found while reading batteries
LB_LOG_AREA(dockLog, "LogDock")     // taskbar presence and the preferences window at start
LB_LOG_AREA(loginLog, "LogLogin")   // launch at login
LB_LOG_AREA(launchLog, "LogLaunch") // the program's start and end, the backend chosen
LB_LOG_AREA(trayLog, "LogTray")     // what the tray shows, while there is no tray

#undef LB_LOG_AREA

} // namespace lb
