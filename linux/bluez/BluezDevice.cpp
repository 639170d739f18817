#include "linux/bluez/BluezDevice.h"

#include "linux/bluez/BluezErrors.h"
#include "linux/bluez/BluezNames.h"

#include <QDBusMessage>
#include <QDBusObjectPath>

namespace lb {

std::chrono::milliseconds BluezDevice::callTimeout(std::optional<std::uint16_t> pageTimeout) {
  return std::chrono::milliseconds(pageTimeout.value_or(8192) * 5 / 8) + std::chrono::seconds(20);
}

std::optional<std::string> BluezDevice::name() const {
  auto alias = mirror_->property(path_, bluez::deviceInterface, "Alias");
  if (!alias) return std::nullopt;
  return alias->toString().toStdString();
}

bool BluezDevice::isConnected() const {
  auto connected = mirror_->property(path_, bluez::deviceInterface, "Connected");
  return connected && connected->toBool();
}

// Low Energy audio devices have no Class of Device; their profiles say what
// they are: an A2DP sink, a headset or hands-free unit, or an LE Audio sink
// (Audio Stream Control).
std::uint32_t BluezDevice::majorDeviceClass() const {
  constexpr std::uint32_t audio = 4;
  auto deviceClass = mirror_->property(path_, bluez::deviceInterface, "Class");
  if (const auto major = deviceClass ? (deviceClass->toUInt() >> 8) & 0x1f : 0; major != 0) return major;
  const auto uuids = mirror_->property(path_, bluez::deviceInterface, "UUIDs");
  if (!uuids) return 0;
  for (const auto& uuid : uuids->toStringList()) {
    for (const char* sink : {"0000110b-", "00001108-", "0000111e-", "0000184e-"}) {
      if (uuid.startsWith(sink, Qt::CaseInsensitive)) return audio;
    }
  }
  return 0;
}

std::uint32_t BluezDevice::classOfDevice() const {
  auto deviceClass = mirror_->property(path_, bluez::deviceInterface, "Class");
  return deviceClass && deviceClass->toUInt() != 0 ? deviceClass->toUInt() : majorDeviceClass() << 8;
}

std::optional<SettingsValue> BluezDevice::batteryProperty(const std::string& keyString) const {
  if (keyString != "batteryPercentSingle") return std::nullopt;
  auto percentage = mirror_->property(path_, bluez::batteryInterface, "Percentage");
  if (!percentage) return std::nullopt;
  return SettingsValue(static_cast<std::int64_t>(percentage->toUInt()));
}

IOReturn BluezDevice::openConnection(std::optional<std::uint16_t> pageTimeout) {
  return call("Connect", callTimeout(pageTimeout));
}

IOReturn BluezDevice::closeConnection() { return call("Disconnect", callTimeout(std::nullopt)); }

IOReturn BluezDevice::call(const char* method, std::chrono::milliseconds timeout) {
  // What the mirror already says costs no message.
  if (!mirror_->property(path_, bluez::deviceInterface, "Address")) {
    return IOReturn::make(IOReturn::Code::kIOReturnNoDevice, "the device is gone from BlueZ");
  }
  if (auto adapter = mirror_->property(path_, bluez::deviceInterface, "Adapter")) {
    auto powered = mirror_->property(adapter->value<QDBusObjectPath>().path(), bluez::adapterInterface, "Powered");
    if (powered && !powered->toBool()) {
      return IOReturn::make(IOReturn::Code::kIOReturnOffline, "the Bluetooth adapter is off");
    }
  }
  auto message = QDBusMessage::createMethodCall(bluez::service, path_, bluez::deviceInterface, method);
  auto reply = bus_.call(message, QDBus::Block, int(timeout.count()));
  if (reply.type() == QDBusMessage::ErrorMessage) {
    return bluezResult(reply.errorName().toStdString(), reply.errorMessage().toStdString());
  }
  return IOReturn::success();
}

} // namespace lb
