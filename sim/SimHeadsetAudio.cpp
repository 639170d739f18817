#include "sim/SimHeadsetAudio.h"

namespace lb {

SimHeadsetAudio::SimHeadsetAudio(SimBluetoothWorld& world, SimAudioSystem& audio, EventLoop& loop, std::string address,
                                 std::string name, Options chosen)
    : options(chosen), audio_(audio), loop_(loop), address_(std::move(address)), name_(std::move(name)) {
  registrations_.push_back(world.subscribe(address_, true, [this](const BluetoothNotification&, auto) {
    if (options.delay <= 0) return appear(); // with the connection itself
    loop_.postAfter(Seconds(options.delay), [this, expected = *generation_, weak = std::weak_ptr<int>(generation_)] {
      if (auto generation = weak.lock(); generation && *generation == expected) appear();
    });
  }));
  registrations_.push_back(
      world.subscribe(address_, false, [this](const BluetoothNotification&, auto) { disappear(); }));
}

void SimHeadsetAudio::appear() {
  const std::string uid = "bluez." + address_;
  if (options.hasOutput && !speaker) {
    speaker = audio_.addDevice({name_, uid + ".a2dp_sink", true, true});
    if (options.systemSwitches) audio_.makeDefault(AudioDirection::output, speaker);
  }
  if (options.hasMicrophone && !microphone) {
    microphone = audio_.addDevice({name_, uid + ".handsfree_source", false, true});
    if (options.systemSwitches) audio_.makeDefault(AudioDirection::input, microphone);
  }
}

void SimHeadsetAudio::disappear() {
  ++*generation_;
  if (speaker) audio_.removeDevice(*speaker);
  if (microphone) audio_.removeDevice(*microphone);
  speaker.reset();
  microphone.reset();
}

} // namespace lb
