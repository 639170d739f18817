#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

// A headset set up as a device, which is what the managers match.
class AudioDeviceManagerTest : public ::testing::Test {
protected:
  // No periodic remembering: the tests decide what the input manager knows.
  test::SimulatedDevice d{{{"InputDeviceManagerPeriodicUpdates", false}}, 4, "WH Headset"};
  SimulatedPlatform& sim = d.sim;
  AudioDeviceID builtIn = sim.audio.addDevice({"Built-in Speakers", "alsa_output.pci", true, false});
  AudioDeviceID micro = sim.audio.addDevice({"Built-in Microphone", "alsa_input.pci", false, false});
};

} // namespace

// By the address in its identifier or by the exact name; a
// microphone alone is found but is no potential output, and a mouse never is.
// A device whose name cannot be read is unknown.
TEST_F(AudioDeviceManagerTest, FindingTheAudioDeviceOfAHeadset) {
  test::CapturedLog log;
  sim.audio.failNameReads(builtIn, -10);
  EXPECT_EQ(AudioDeviceManager::Device(sim.audioHardware, builtIn).name(), "unknown");
  EXPECT_TRUE(log.contains("Error getting audio device name for id " + std::to_string(builtIn) + ": -10"));
  const auto& headset = *d.setting;
  sim.audio.addDevice({"wh headset", "usb", true, false});
  EXPECT_THROW(sim.outputDeviceManager.audioDevice(headset), AudioError);
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(headset));
  auto microphone = sim.audio.addDevice({"Mic", "bluez_source.00-11-22-33-44-55", false, true});
  EXPECT_EQ(sim.outputDeviceManager.audioDevice(headset).id(), microphone);
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(headset));
  auto speaker = sim.audio.addDevice({"WH Headset", "something", true, true});
  EXPECT_EQ(sim.outputDeviceManager.audioDevice(headset).id(), speaker);
  EXPECT_TRUE(sim.outputDeviceManager.isPotentialOutput(headset));
  EXPECT_THROW(sim.outputDeviceManager.audioDevice(*DeviceSetting::make(sim.services, {})), AudioError);
  sim.world.addDevice(d.address, "WH Headset", 5);
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(headset));
}

TEST_F(AudioDeviceManagerTest, SettingVerifiesAndSaysWhatWentWrong) {
  AudioDeviceManager::Device speakers(sim.audioHardware, builtIn);
  sim.audio.makeDefault(AudioDirection::output, builtIn);
  sim.outputDeviceManager.setCurrent(speakers); // written again: output sets even if current
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::output), 1);
  sim.defaults.setValue("OnlySetOutputDeviceIfNecessary", true);
  sim.outputDeviceManager.setCurrent(speakers);
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::output), 1);

  AudioDeviceManager::Device usb(sim.audioHardware, sim.audio.addDevice({"USB", "usb", true, false}));
  auto kindOf = [&](SimAudioSystem::SetOutcome outcome) {
    sim.audio.setOutcome(outcome);
    try {
      sim.outputDeviceManager.setCurrent(usb);
    } catch (const AudioError& error) {
      return std::optional(error.kind());
    }
    return std::optional<AudioError::Kind>();
  };
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::refused), AudioError::Kind::settingFailed);
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::anotherStaysCurrent), AudioError::Kind::succeededButVerificationFailed);
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::nothingReadable), AudioError::Kind::succeededButCantVerify);
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::takes), std::nullopt);
}

// Restoring tries at once, after 2, 5 and 12 seconds; once it has taken,
// the later tries find it done.
TEST_F(AudioDeviceManagerTest, TheInputIsRememberedAndRestoredFourTimes) {
  test::CapturedLog log({"LogAudioInput"});
  sim.inputDeviceManager.restoreLast(); // nothing remembered: nothing restored
  sim.loop.advance(20);
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::input), 0);
  EXPECT_TRUE(log.contains("No last input device"));

  sim.audio.makeDefault(AudioDirection::input, micro);
  sim.inputDeviceManager.rememberCurrentDevice("test");
  sim.inputDeviceManager.rememberCurrentDevice("test again");
  sim.audio.makeDefault(AudioDirection::input, sim.audio.addDevice({"Headset Mic", "bluez_source.x", false, true}));
  sim.audio.setOutcome(SimAudioSystem::SetOutcome::refused);
  sim.inputDeviceManager.restoreLast();
  for (auto [wait, tries] : {std::pair{0.0, 1}, {1.9, 1}, {0.1, 2}, {3.0, 3}, {7.0, 4}}) {
    sim.loop.advance(wait);
    EXPECT_EQ(sim.audio.setCalls(AudioDirection::input), tries) << wait;
  }

  sim.audio.setOutcome(SimAudioSystem::SetOutcome::takes);
  sim.inputDeviceManager.restoreLast();
  sim.loop.advance(12);
  EXPECT_EQ(sim.audio.defaultDevice(AudioDirection::input), micro);
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::input), 5);
}

} // namespace lb
