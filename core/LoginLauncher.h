#pragma once

#include "core/UserDefaults.h"
#include "ports/LoginItems.h"

namespace lb {

// Brings the system's start-at-login state into line with the user's
// launch-at-login choice: at every launch, and when the choice changes.
struct LoginLauncher {
  static void updateFromDefaults(const UserDefaults& defaults, LoginItems& loginItems);
};

} // namespace lb
