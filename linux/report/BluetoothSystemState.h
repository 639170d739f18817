#pragma once

#include <QDBusConnection>

#include <string>

namespace lb {

// What the Bluetooth system is, for the diagnostic report: bluetoothd's
// version, and every adapter and paired device with all their properties,
// as BlueZ tells them on `bus`.
struct BluetoothSystemState {
  static std::string describe(QDBusConnection bus);
  // "5.66", or why it is not known.
  static std::string bluetoothdVersion();
};

} // namespace lb
