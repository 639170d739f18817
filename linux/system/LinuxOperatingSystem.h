#pragma once

#include "ports/OperatingSystem.h"

namespace lb {

// Linux answers as the newest system: a reported connection time-out may be
// followed by the connection, and dialogs say "Settings".
class LinuxOperatingSystem final : public OperatingSystem {
public:
  bool hasSpuriousConnectionTimeouts() const override { return true; }
  bool usesSettingsWording() const override { return true; }
};

} // namespace lb
