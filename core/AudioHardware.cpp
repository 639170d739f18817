#include "core/AudioHardware.h"

#include "foundation/PXRLog.h"

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

} // namespace lb
