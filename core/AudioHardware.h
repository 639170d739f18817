#pragma once

#include "foundation/PXRExpiringCache.h"
#include "ports/AudioSystem.h"

namespace lb {

// The program's reads and writes of the audio system, with their error
// lines, and the process's caches of device names and identifiers (300 s).
class AudioHardware {
public:
  AudioHardware(AudioSystem& system, const Clock& clock)
      : system_(system), deviceNamesCache_(clock, 1000, Seconds(300)), deviceUIDsCache_(clock, 1000, Seconds(300)) {}

  std::optional<std::string> pxrAudioDeviceName(AudioDeviceID id) const;
  std::optional<std::string> pxrAudioDeviceUID(AudioDeviceID id) const;
  // A device with output streams is a speaker; none when the query failed.
  std::optional<bool> pxrAudioDeviceIsSpeaker(AudioDeviceID id) const;
  std::vector<AudioDeviceID> pxrAllAudioDeviceIDs() const { return system_.deviceIDs(); }
  std::optional<AudioDeviceID> pxrCurrentDevice(AudioDirection direction) const {
    return system_.defaultDevice(direction);
  }
  std::int32_t pxrSetCurrent(AudioDeviceID id, AudioDirection direction) {
    return system_.setDefaultDevice(direction, id);
  }
  void setChangeHandler(std::function<void()> handler) { system_.setChangeHandler(std::move(handler)); }

  PXRExpiringCache<AudioDeviceID, std::string>& deviceNamesCache() { return deviceNamesCache_; }
  PXRExpiringCache<AudioDeviceID, std::string>& deviceUIDsCache() { return deviceUIDsCache_; }

private:
  AudioSystem& system_;
  PXRExpiringCache<AudioDeviceID, std::string> deviceNamesCache_;
  PXRExpiringCache<AudioDeviceID, std::string> deviceUIDsCache_;
};

} // namespace lb
