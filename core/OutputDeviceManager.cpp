#include "core/OutputDeviceManager.h"

#include "foundation/PXRLog.h"

namespace lb {

std::vector<AudioDeviceManager::Device> OutputDeviceManager::allDevices() const {
  std::vector<Device> devices;
  for (auto id : hardware_.pxrAllAudioDeviceIDs()) devices.emplace_back(hardware_, id);
  return devices;
}

std::vector<AudioDeviceManager::Device> OutputDeviceManager::outputDevices() const {
  auto devices = allDevices();
  std::erase_if(devices, [](const Device& device) { return !device.isSpeaker(); });
  return devices;
}

AudioDeviceManager::Device OutputDeviceManager::audioDevice(const BluetoothMatchable& bluetooth) const {
  auto speakers = outputDevices();
  for (const auto& device : speakers) {
    if (device.matches(bluetooth)) return device;
  }
  auto all = allDevices();
  for (const auto& device : all) {
    if (device.matches(bluetooth)) {
      PXR_LOG_ERROR("Found device", bluetooth.description(), ", though it is not currently available as a speaker");
      return device;
    }
  }
  PXR_LOG_ERROR("Trying to set output device to", bluetooth.description(),
                "but could not find it among the current devices");
  PXR_LOG_ERROR("Output devices:", multilineDescription(speakers));
  PXR_LOG_ERROR("All devices:", multilineDescription(all));
  throw AudioError(AudioError::Kind::noMatchingAudioDevice);
}

bool OutputDeviceManager::isCurrent(const BluetoothMatchable& bluetooth) const {
  auto now = current();
  return now && now->matches(bluetooth);
}

bool OutputDeviceManager::isPotentialOutput(const BluetoothMatchable& bluetooth) const {
  auto device = bluetooth.device();
  if (!device || device->majorDeviceClass() != audioMajorClass) return false;
  for (const auto& speaker : outputDevices()) {
    if (speaker.matches(bluetooth)) return true;
  }
  return false;
}

void OutputDeviceManager::setCurrent(const BluetoothMatchable& bluetooth) {
  AudioDeviceManager::setCurrent(audioDevice(bluetooth));
}

} // namespace lb
