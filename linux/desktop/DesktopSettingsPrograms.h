#pragma once

#include "ports/DesktopSettings.h"

namespace lb {

// The settings programs of the desktops, started as programs of their own:
// GNOME's, Plasma's, then the stand-alone Bluetooth managers.
class DesktopSettingsPrograms final : public DesktopSettings {
public:
  // The first one installed.
  bool openBluetoothSettings() override;
  // From $XDG_CURRENT_DESKTOP: GNOME or KDE.
  bool warnsOfLowBattery() const override;
};

} // namespace lb
