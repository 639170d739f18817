#pragma once

#include "linux/bluez/BluezMirror.h"
#include "ports/BluetoothDevice.h"

#include <QDBusConnection>

#include <chrono>
#include <memory>

namespace lb {

// One BlueZ device: its queries read the mirror and send nothing; connect
// and disconnect are blocking D-Bus calls, made from a worker.
class BluezDevice final : public BluetoothDevice {
public:
  BluezDevice(std::shared_ptr<const BluezMirror> mirror, QDBusConnection bus, QString path, std::string address)
      : mirror_(std::move(mirror)), bus_(std::move(bus)), path_(std::move(path)), address_(std::move(address)) {}

  // BlueZ takes no page timeout. A call waits the page time asked for (8192
  // slots, 5.12 s, when none is given: BlueZ's own default) plus 20 s for the
  // profiles (audio, hands-free) to come up after the link: 0.625 ms a slot.
  static std::chrono::milliseconds callTimeout(std::optional<std::uint16_t> pageTimeout);

  std::string addressString() const override { return address_; }
  std::optional<std::string> name() const override;
  bool isConnected() const override;
  std::uint32_t majorDeviceClass() const override;
  std::uint32_t classOfDevice() const override;
  IOReturn openConnection(std::optional<std::uint16_t> pageTimeout = std::nullopt) override;
  IOReturn closeConnection() override;
  // BlueZ's Battery1.Percentage, offered as "batteryPercentSingle".
  std::optional<SettingsValue> batteryProperty(const std::string& keyString) const override;

  const QString& path() const { return path_; }

private:
  IOReturn call(const char* method, std::chrono::milliseconds timeout);

  std::shared_ptr<const BluezMirror> mirror_;
  QDBusConnection bus_;
  QString path_;
  std::string address_;
};

} // namespace lb
