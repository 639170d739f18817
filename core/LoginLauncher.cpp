#include "core/LoginLauncher.h"

#include "core/LogAreas.h"
#include "core/SettingKeys.h"

namespace lb {

void LoginLauncher::updateFromDefaults(const UserDefaults& defaults, LoginItems& loginItems) {
  bool enabled = defaults.boolValue(settingKey::launchAtLogin, false);
  // A refusal is only logged: the next launch or change tries again.
  if (auto changed = loginItems.setEnabled(enabled)) {
    PXR_LOG(loginLog(), "Updated login item state to:", enabled);
  } else {
    PXR_LOG_ERROR("Failed to set login item state to:", enabled, changed.failure().reason);
  }
}

} // namespace lb
