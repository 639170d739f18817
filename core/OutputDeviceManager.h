#pragma once

#include "core/AudioDeviceManager.h"

namespace lb {

// Finds the audio device that belongs to a Bluetooth device and makes it the
// system's sound output.
class OutputDeviceManager final : public AudioDeviceManager {
public:
  // The major device class of audio and video equipment.
  static constexpr std::uint32_t audioMajorClass = 4;

  OutputDeviceManager(AudioHardware& hardware, Tunables& tunables)
      : AudioDeviceManager(hardware, tunables, AudioDirection::output) {}

  std::vector<Device> allDevices() const;
  std::vector<Device> outputDevices() const;
  // The first matching speaker, or else the first matching device of any
  // kind (with an error line); throws noMatchingAudioDevice.
  Device audioDevice(const BluetoothMatchable& bluetooth) const;
  bool isCurrent(const BluetoothMatchable& bluetooth) const;
  // An audio-class Bluetooth device with a matching speaker.
  bool isPotentialOutput(const BluetoothMatchable& bluetooth) const;
  void setCurrent(const BluetoothMatchable& bluetooth);
  using AudioDeviceManager::setCurrent;
};

} // namespace lb
