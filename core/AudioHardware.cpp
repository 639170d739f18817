#include "core/AudioHardware.h"

#include "foundation/PXRLog.h"

#include <algorithm>

namespace lb {

std::optional<std::string> AudioHardware::pxrAudioDeviceName(AudioDeviceID id) const {
  auto read = system_.name(id);
  if (read.status != 0)
    PXR_LOG_ERROR("Error getting audio device name for id " + std::to_string(id) + ": " + std::to_string(read.status));
  return read.value;
}

std::optional<std::string> AudioHardware::pxrAudioDeviceUID(AudioDeviceID id) const {
  auto read = system_.uid(id);
  if (read.status != 0)
    PXR_LOG_ERROR("Error getting audio device uid for id " + std::to_string(id) + ": " + std::to_string(read.status));
  return read.value;
}

std::optional<bool> AudioHardware::pxrAudioDeviceIsSpeaker(AudioDeviceID id) const {
  auto read = system_.hasOutputStreams(id);
  if (read.status != 0)
    PXR_LOG_ERROR("Error getting speaker status for id " + std::to_string(id) + ": " + std::to_string(read.status));
  return read.value;
}

void AudioHardware::setChangeHandler(std::function<void()> handler) {
  if (!handler) return system_.setChangeHandler({});
  system_.setChangeHandler([this, handler = std::move(handler)] {
    forgetDevicesThatLeft();
    handler();
  });
}

void AudioHardware::forgetDevicesThatLeft() {
  auto present = system_.deviceIDs();
  std::sort(present.begin(), present.end());
  std::lock_guard lock(presentMutex_);
  for (auto id : present_) {
    if (std::binary_search(present.begin(), present.end(), id)) continue;
    deviceNamesCache_.remove(id);
    deviceUIDsCache_.remove(id);
  }
  present_ = std::move(present);
}

} // namespace lb
