#pragma once

#include "core/AudioError.h"
#include "core/AudioHardware.h"
#include "core/BluetoothMatchable.h"
#include "core/Tunables.h"

#include <optional>
#include <string>
#include <vector>

namespace lb {

// Reads and sets the system's current audio device in one direction, and
// verifies that a set took.
class AudioDeviceManager {
public:
  // One audio device. Cheap: made anew for every listing; its name and
  // identifier come from the shared caches, read once per object.
  class Device {
  public:
    Device(AudioHardware& hardware, AudioDeviceID id) : hardware_(&hardware), id_(id) {}

    AudioDeviceID id() const { return id_; }
    const std::string& name() const;
    const std::string& uid() const;
    bool isSpeaker() const;
    // "AudioDevice(id: 73, name: External Headphones)"
    std::string description() const;
    // Its identifier holds the Bluetooth address (in any letter case), or
    // else its name is the device's name exactly.
    bool matches(const BluetoothMatchable& bluetooth) const;

    bool operator==(const Device& other) const { return id_ == other.id_; }

  private:
    AudioHardware* hardware_;
    AudioDeviceID id_;
    mutable std::optional<std::string> name_;
    mutable std::optional<std::string> uid_;
    mutable std::optional<bool> isSpeaker_;
  };

  // "[a,\n    b]"
  static std::string multilineDescription(const std::vector<Device>& devices);

  AudioDeviceManager(AudioHardware& hardware, Tunables& tunables, AudioDirection direction)
      : hardware_(hardware), tunables_(tunables), direction_(direction) {}
  virtual ~AudioDeviceManager() = default;

  // Whether a set is skipped when the device is current already.
  virtual bool onlySetIfNecessary() const;
  std::optional<Device> current() const;
  // Sets and verifies; throws AudioError.
  void setCurrent(const Device& device);
  // Told, on any thread, when the system's devices or defaults change.
  void setChangeHandler(std::function<void()> handler) { hardware_.setChangeHandler(std::move(handler)); }
  bool serverAnswers() const { return hardware_.serverAnswers(); }

protected:
  AudioHardware& hardware_;
  Tunables& tunables_;

private:
  const char* directionName() const { return direction_ == AudioDirection::input ? "input" : "output"; }
  const class PXRLog& area() const;

  AudioDirection direction_;
};

} // namespace lb
