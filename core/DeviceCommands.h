#pragma once

#include "core/ConnectionOutcome.h"
#include "ports/StatusBar.h"

#include <optional>

namespace lb {

// What a device's tray item, menu and shortcut ask of its setting: the
// same requests a script makes, each going the one way a request goes.
class DeviceCommands {
public:
  virtual ~DeviceCommands() = default;
  // A click, or a shortcut press without one.
  virtual ConnectionOutcome toggleConnection(const std::optional<StatusItemClick>& click) = 0;
  virtual ConnectionOutcome connect() = 0;
  virtual ConnectionOutcome disconnectFromMenu() = 0;
  virtual void makeSoundOutput() = 0;
};

} // namespace lb
