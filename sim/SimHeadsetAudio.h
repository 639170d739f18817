#pragma once

#include "sim/SimAudioSystem.h"
#include "sim/SimBluetoothWorld.h"

#include <memory>
#include <vector>

namespace lb {

// The audio side of a simulated Bluetooth headset: while the headset is
// connected, the audio system lists its speaker (and microphone), appearing
// `delay` seconds after the connection and gone at the disconnection.
class SimHeadsetAudio {
public:
  struct Options {
    double delay = 0.3;
    bool hasOutput = true;       // false: the speaker never appears
    bool systemSwitches = false; // the system makes the new devices the defaults
    bool hasMicrophone = false;
  };

  SimHeadsetAudio(SimBluetoothWorld& world, SimAudioSystem& audio, EventLoop& loop, std::string address,
                  std::string name, Options options);

  Options options;
  std::optional<AudioDeviceID> speaker;
  std::optional<AudioDeviceID> microphone;

private:
  void appear();
  void disappear();

  SimAudioSystem& audio_;
  EventLoop& loop_;
  std::string address_;
  std::string name_;
  std::shared_ptr<int> generation_ = std::make_shared<int>(0); // drops a late appearance after a disconnection
  std::vector<std::unique_ptr<NotificationRegistration>> registrations_;
};

} // namespace lb
