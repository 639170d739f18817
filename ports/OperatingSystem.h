#pragma once

namespace lb {

// Questions about the system whose answers change behaviour. Linux answers
// as the newest system: connection time-outs may be spurious and are waited
// out, and dialogs use the newer wording.
class OperatingSystem {
public:
  virtual ~OperatingSystem() = default;
  // A reported connection time-out may be followed by the connection.
  virtual bool hasSpuriousConnectionTimeouts() const = 0;
  // Dialogs name "Settings" rather than "Preferences".
  virtual bool usesSettingsWording() const = 0;
};

} // namespace lb
