#pragma once

#include "foundation/SettingsValue.h"

#include <optional>
#include <string>
#include <vector>

namespace lb {

// Where battery levels come from besides the device object itself: a
// registry of entries with properties (on Linux, UPower's devices) and a
// helper tool that prints a device's levels as a property list.
class BatterySources {
public:
  struct RegistryEntry {
    std::string name;
    std::string path;
    std::optional<SettingsValue::Dictionary> properties; // none: unreadable
  };

  virtual ~BatterySources() = default;

  // Every entry of the registry; throws when the registry cannot be walked.
  virtual std::vector<RegistryEntry> registryEntries() = 0;
  // Runs the helper tool for the address and parses what it prints; throws
  // when it cannot be run or its output is no property list.
  virtual SettingsValue runHelper(const std::string& address) = 0;
};

} // namespace lb
