#pragma once

#include "linux/UPowerRegistry.h"
#include "ports/BatterySources.h"

#include <string>

namespace lb {

// Battery sources on Linux: UPower's devices as the registry, and the
// helper tool, which is this program under the name LanternbudHelperTool
// run in its print mode.
class LinuxBatterySources final : public BatterySources {
public:
  LinuxBatterySources(const UPowerRegistry& registry, std::string helperPath)
      : registry_(registry), helperPath_(std::move(helperPath)) {}

  std::vector<RegistryEntry> registryEntries() override { return registry_.entries(); }
  // Runs "<helper> -PrintBatteryInfo <address>" to its end (10 s at most)
  // and parses what it printed.
  SettingsValue runHelper(const std::string& address) override;

private:
  const UPowerRegistry& registry_;
  std::string helperPath_;
};

} // namespace lb
