#pragma once

namespace lb {

// What the desktop itself offers: its settings, where the user pairs
// devices, and its own warnings.
class DesktopSettings {
public:
  virtual ~DesktopSettings() = default;
  // Opens the desktop's Bluetooth settings; false when it has none that the
  // program knows of.
  virtual bool openBluetoothSettings() = 0;
  // Whether the desktop's power daemon warns of a device's low battery
  // itself (GNOME's and Plasma's do).
  virtual bool warnsOfLowBattery() const = 0;
};

} // namespace lb
