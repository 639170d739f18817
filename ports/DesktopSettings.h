#pragma once

namespace lb {

// The desktop's own settings, where the user pairs devices.
class DesktopSettings {
public:
  virtual ~DesktopSettings() = default;
  // Opens the desktop's Bluetooth settings; false when it has none that the
  // program knows of.
  virtual bool openBluetoothSettings() = 0;
};

} // namespace lb
