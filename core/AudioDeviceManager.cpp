#include "core/AudioDeviceManager.h"

#include "core/LogAreas.h"
#include "foundation/BluetoothAddress.h"

#include <algorithm>
#include <cctype>

namespace lb {

const std::string& AudioDeviceManager::Device::name() const {
  if (!name_) {
    name_ = hardware_->deviceNamesCache().fill(id_,
                                               [&] { return hardware_->pxrAudioDeviceName(id_).value_or("unknown"); });
  }
  return *name_;
}

const std::string& AudioDeviceManager::Device::uid() const {
  if (!uid_) {
    uid_ = hardware_->deviceUIDsCache().fill(id_,
                                             [&] { return hardware_->pxrAudioDeviceUID(id_).value_or("unknown"); });
  }
  return *uid_;
}

bool AudioDeviceManager::Device::isSpeaker() const {
  if (!isSpeaker_) isSpeaker_ = hardware_->pxrAudioDeviceIsSpeaker(id_).value_or(false);
  return *isSpeaker_;
}

std::string AudioDeviceManager::Device::description() const {
  return "AudioDevice(id: " + std::to_string(id_) + ", name: " + name() + ")";
}

bool AudioDeviceManager::Device::matches(const BluetoothMatchable& bluetooth) const {
  if (auto device = bluetooth.device()) {
    auto address = BluetoothAddress::parse(device->addressString());
    if (address && BluetoothAddress::findIn(uid()) == address) return true;
  }
  auto bluetoothName = bluetooth.deviceName();
  return bluetoothName && name() == *bluetoothName;
}

std::string AudioDeviceManager::multilineDescription(const std::vector<Device>& devices) {
  std::string text = "[";
  for (std::size_t i = 0; i < devices.size(); ++i) text += (i ? ",\n    " : "") + devices[i].description();
  return text + "]";
}

bool AudioDeviceManager::onlySetIfNecessary() const { return tunables_(tunable::OnlySetOutputDeviceIfNecessary); }

const PXRLog& AudioDeviceManager::area() const {
  return direction_ == AudioDirection::input ? inputLog() : outputLog();
}

std::optional<AudioDeviceManager::Device> AudioDeviceManager::current() const {
  auto id = hardware_.pxrCurrentDevice(direction_);
  if (!id) return std::nullopt;
  return Device(hardware_, *id);
}

void AudioDeviceManager::setCurrent(const Device& device) {
  const std::string direction = directionName();
  if (onlySetIfNecessary()) {
    if (auto now = current(); now && *now == device) {
      area()([&] { return direction + " device was already set to " + device.description(); });
      return;
    }
  }
  if (auto status = hardware_.pxrSetCurrent(device.id(), direction_); status != 0) {
    PXR_LOG_ERROR("Error " + std::to_string(status) + " setting " + direction + " device to " + device.description());
    throw AudioError(AudioError::Kind::settingFailed, status);
  }
  auto now = current();
  if (now && *now == device) {
    area()([&] {
      return "Successfully set last " + direction + " device to " + device.description() + " and now is " +
             now->description();
    });
  } else if (now) {
    PXR_LOG_ERROR("Successfully set last " + direction + " device to " + device.description() +
                  ", but current device is actually " + now->description());
    throw AudioError(AudioError::Kind::succeededButVerificationFailed);
  } else {
    PXR_LOG_ERROR("Successfully set last " + direction + " device to " + device.description() +
                  ", but can't read current device");
    throw AudioError(AudioError::Kind::succeededButCantVerify);
  }
}

} // namespace lb
