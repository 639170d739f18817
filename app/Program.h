#pragma once

#include "core/Tunables.h"
#include "core/UserDefaults.h"

#include <string>

namespace lb {

// The program's two modes, from the process entry.
struct Program {
  // Prints the device's battery information as an XML property list on
  // standard output; an unknown address prints nothing.
  // The exit status: 0, or 1 when standard output could not take the list.
  static int printBatteryInfo(Tunables& tunables, const std::string& address, const std::string& helperPath);
  // The application: one instance per session, the devices in the tray,
  // the scripting interface, until a quit request or SIGTERM or SIGINT.
  // The exit status.
  static int runApplication(UserDefaults& defaults, Tunables& tunables, bool demo, const std::string& helperPath);
};

} // namespace lb
