#pragma once

#include "ports/OperatingSystem.h"

namespace lb {

// Answers as the newest system unless a test says otherwise.
class SimOperatingSystem final : public OperatingSystem {
public:
  bool hasSpuriousConnectionTimeouts() const override { return spuriousTimeouts; }
  bool usesSettingsWording() const override { return settingsWording; }

  bool spuriousTimeouts = true;
  bool settingsWording = true;
};

} // namespace lb
