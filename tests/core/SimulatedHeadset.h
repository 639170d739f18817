#pragma once

#include "sim/SimHeadsetAudio.h"
#include "tests/support/SimulatedDevice.h"

namespace lb::test {

// A headset added through the registry, with built-in speakers and a
// microphone that are the defaults to begin with.
struct SimulatedHeadset : SimulatedDevice {
  explicit SimulatedHeadset(SimHeadsetAudio::Options options, SettingsValue::Dictionary settings = {})
      : SimulatedDevice(std::move(settings), 4, "WH Headset"),
        speakers(sim.audio.addDevice({"Built-in Speakers", "alsa_output.pci", true, false})),
        microphone(sim.audio.addDevice({"Built-in Microphone", "alsa_input.pci", false, false})),
        audio(sim.world, sim.audio, sim.loop, address, "WH Headset", options) {
    sim.audio.makeDefault(AudioDirection::output, speakers);
    sim.audio.makeDefault(AudioDirection::input, microphone);
  }

  bool outputIsHeadset() const {
    return audio.speaker && sim.audio.defaultDevice(AudioDirection::output) == audio.speaker;
  }

  // Connected once by itself, which shows it as a potential output, and
  // disconnected again past that connection's fast timer.
  void connectEarlier() {
    sim.world.setConnected(address, true);
    sim.loop.advance(audio.options.delay + 1);
    sim.world.setConnected(address, false);
    sim.loop.advance(11);
  }

  AudioDeviceID speakers;
  AudioDeviceID microphone;
  SimHeadsetAudio audio;
};

} // namespace lb::test
