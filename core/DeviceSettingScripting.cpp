// DeviceSetting as scripts see it: the values of its scripting properties
// and the one property they may set.
#include "core/DeviceSetting.h"

namespace lb {

std::optional<std::string> DeviceSetting::scriptingAddress() const {
  auto found = device();
  if (!found || found->addressString().empty()) return std::nullopt;
  return found->addressString();
}

std::optional<int> DeviceSetting::scriptingBatteryLevel(BatteryReading reading) {
  if (!scriptingIsConnected()) return std::nullopt;
  return presentation_.batteryLevel(reading);
}

bool DeviceSetting::scriptingIsConnected() const {
  auto found = device();
  return found && found->isConnected();
}

std::vector<unsigned char> DeviceSetting::scriptingIconData() const {
  return statusItem() ? pngOf(statusItem()->image()) : std::vector<unsigned char>{};
}

void DeviceSetting::setScriptingIsConnected(bool connected) {
  if (scriptingIsConnected() != connected) toggleConnection();
}

} // namespace lb
