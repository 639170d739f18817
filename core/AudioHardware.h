#pragma once

#include "foundation/PXRExpiringCache.h"
#include "ports/AudioSystem.h"

#include <mutex>
#include <vector>

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
  bool serverAnswers() const { return system_.serverAnswers(); }
  std::optional<AudioDeviceID> pxrCurrentDevice(AudioDirection direction) const {
    return system_.defaultDevice(direction);
  }
  std::int32_t pxrSetCurrent(AudioDeviceID id, AudioDirection direction) {
    return system_.setDefaultDevice(direction, id);
  }
  // Before `handler` hears of a change, the names and identifiers of the
  // devices that left are forgotten: a device that comes under a known ID
  // (PulseAudio's sink name used again for another headset) is read afresh.
  void setChangeHandler(std::function<void()> handler);

  PXRExpiringCache<AudioDeviceID, std::string>& deviceNamesCache() { return deviceNamesCache_; }
  PXRExpiringCache<AudioDeviceID, std::string>& deviceUIDsCache() { return deviceUIDsCache_; }

private:
  void forgetDevicesThatLeft();

  AudioSystem& system_;
  std::mutex presentMutex_;
  std::vector<AudioDeviceID> present_; // sorted, as at the last change
  PXRExpiringCache<AudioDeviceID, std::string> deviceNamesCache_;
  PXRExpiringCache<AudioDeviceID, std::string> deviceUIDsCache_;
};

} // namespace lb
