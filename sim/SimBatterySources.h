#pragma once

#include "ports/BatterySources.h"

#include <functional>
#include <stdexcept>

namespace lb {

// A battery registry and helper tool whose answers the test sets.
class SimBatterySources final : public BatterySources {
public:
  std::vector<RegistryEntry> registryEntries() override {
    ++registryReads;
    if (registryFails) throw std::runtime_error("the registry cannot be walked");
    return entries;
  }
  SettingsValue runHelper(const std::string& address) override {
    helperRuns.push_back(address);
    if (!helper) throw std::runtime_error("no helper tool");
    return helper(address);
  }

  std::vector<RegistryEntry> entries;
  bool registryFails = false;
  int registryReads = 0;
  std::function<SettingsValue(const std::string&)> helper; // none: the tool is missing
  std::vector<std::string> helperRuns;
};

} // namespace lb
