#pragma once

#include "ports/DesktopSettings.h"

namespace lb {

class SimDesktopSettings final : public DesktopSettings {
public:
  bool openBluetoothSettings() override {
    if (installed) ++opened;
    return installed;
  }

  bool warnsOfLowBattery() const override { return warnsOfLowBatteryItself; }

  // The world's side.
  bool installed = true;
  bool warnsOfLowBatteryItself = false;
  int opened = 0;
};

} // namespace lb
