#pragma once

#include "ports/IOReturn.h"

#include <string>

namespace lb {

// BlueZ's and D-Bus's errors as the program's result codes:
//   page timeout (Failed: "Page Timeout", "br-connection-page-timeout") -> 4
//   org.bluez.Error.AlreadyConnected                                     -> 11
//   an unknown or vanished object, or org.bluez gone                     -> 704
//   no reply in time                                                     -> 726
//   org.bluez.Error.NotReady (adapter off or not ready)                  -> 727
//   anything else                                                        -> 700, with BlueZ's name and message
// The result keeps the error's name and message as its detail, for logs and
// the error dialog.
IOReturn bluezResult(const std::string& errorName, const std::string& message);

} // namespace lb
