#pragma once

#include "ports/AudioSystem.h"

#include <map>
#include <mutex>

namespace lb {

// Simulated audio devices. Core sees the AudioSystem side; tests and the
// demo act through the rest: devices come and go, the system switches the
// default by itself, and a set can be refused or not take.
class SimAudioSystem final : public AudioSystem {
public:
  struct Device {
    std::string name;
    std::string uid;
    bool output = true; // a speaker; false for a microphone
    bool bluetooth = false;
  };

  // What happens to the next default-device sets.
  enum class SetOutcome { takes, refused, anotherStaysCurrent, nothingReadable };

  std::vector<AudioDeviceID> deviceIDs() const override;
  AudioRead<std::string> name(AudioDeviceID id) const override;
  AudioRead<std::string> uid(AudioDeviceID id) const override;
  AudioRead<std::string> serialNumber(AudioDeviceID id) const override;
  AudioRead<std::uint32_t> transportType(AudioDeviceID id) const override;
  AudioRead<bool> hasOutputStreams(AudioDeviceID id) const override;
  bool serverAnswers() const override;
  std::optional<AudioDeviceID> defaultDevice(AudioDirection direction) const override;
  std::int32_t setDefaultDevice(AudioDirection direction, AudioDeviceID id) override;

  // The world's side.
  AudioDeviceID addDevice(Device device);
  void removeDevice(AudioDeviceID id);
  // The system switches by itself.
  void makeDefault(AudioDirection direction, std::optional<AudioDeviceID> id);
  void setOutcome(SetOutcome outcome);
  // No sound server: no devices, no defaults, as when none runs on Linux.
  void stopServer();
  // Reads of this device's name fail with `status`.
  void failNameReads(AudioDeviceID id, std::int32_t status);
  int setCalls(AudioDirection direction) const;
  int nameReads() const;

private:
  mutable std::mutex mutex_;
  AudioDeviceID nextID_ = 100;
  std::map<AudioDeviceID, Device> devices_;
  std::map<AudioDeviceID, std::int32_t> failingNames_;
  std::optional<AudioDeviceID> defaultOutput_;
  std::optional<AudioDeviceID> defaultInput_;
  SetOutcome outcome_ = SetOutcome::takes;
  bool unreadable_ = false;
  bool serverAnswers_ = true;
  std::map<AudioDirection, int> setCalls_;
  mutable int nameReads_ = 0;
};

} // namespace lb
