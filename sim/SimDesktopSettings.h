#pragma once

#include "ports/DesktopSettings.h"

namespace lb {

class SimDesktopSettings final : public DesktopSettings {
public:
  bool openBluetoothSettings() override {
    if (installed) ++opened;
    return installed;
  }

  // The world's side.
  bool installed = true;
  int opened = 0;
};

} // namespace lb
