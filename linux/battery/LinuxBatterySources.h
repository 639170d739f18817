#pragma once

#include "linux/battery/HelperTool.h"
#include "linux/battery/UPowerRegistry.h"
#include "ports/BatterySources.h"

namespace lb {

// Battery sources on Linux: UPower's devices as the registry, and the
// helper tool.
class LinuxBatterySources final : public BatterySources {
public:
  LinuxBatterySources(const UPowerRegistry& registry, HelperTool helper)
      : registry_(registry), helper_(std::move(helper)) {}

  std::vector<RegistryEntry> registryEntries() override { return registry_.entries(); }
  SettingsValue runHelper(const std::string& address) override { return helper_.run(address); }

private:
  const UPowerRegistry& registry_;
  HelperTool helper_;
};

} // namespace lb
