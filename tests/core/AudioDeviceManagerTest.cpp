#include "core/OutputDeviceManager.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

struct Matchable : BluetoothMatchable {
  std::shared_ptr<BluetoothDevice> bluetooth;
  std::optional<std::string> name;
  std::shared_ptr<BluetoothDevice> device() const override { return bluetooth; }
  std::optional<std::string> deviceName() const override { return name; }
  std::string description() const override { return "<Matchable>"; }
};

class AudioDeviceManagerTest : public ::testing::Test {
protected:
  // No periodic remembering: the tests decide what the input manager knows.
  InMemorySettingsStore store{{{"InputDeviceManagerPeriodicUpdates", false}}};
  SimulatedPlatform sim{store};
  AudioDeviceID builtIn = sim.audio.addDevice({"Built-in Speakers", "alsa_output.pci", true, false});
  AudioDeviceID micro = sim.audio.addDevice({"Built-in Microphone", "alsa_input.pci", false, false});

  Matchable headset(std::uint32_t majorClass = 4) {
    sim.world.addDevice("AA-BB-CC-DD-EE-FF", "WH Headset", majorClass);
    Matchable matchable;
    matchable.bluetooth = sim.bluetooth.deviceWithAddressString("AA-BB-CC-DD-EE-FF");
    matchable.name = "WH Headset";
    return matchable;
  }
};

} // namespace

TEST_F(AudioDeviceManagerTest, MatchingByAddressInAnyCaseOrByTheExactName) {
  auto bluetooth = headset();
  AudioDeviceManager::Device byAddress(
      sim.audioHardware, sim.audio.addDevice({"Other name", "bluez_sink.aa-bb-cc-dd-ee-ff.a2dp", true, true}));
  AudioDeviceManager::Device byName(sim.audioHardware, sim.audio.addDevice({"WH Headset", "something", true, true}));
  AudioDeviceManager::Device wrongCase(sim.audioHardware,
                                       sim.audio.addDevice({"wh headset", "something else", true, true}));
  EXPECT_TRUE(byAddress.matches(bluetooth));
  EXPECT_TRUE(byName.matches(bluetooth));
  EXPECT_FALSE(wrongCase.matches(bluetooth));
  EXPECT_FALSE(byName.matches(Matchable{})); // no device, no name
}

TEST_F(AudioDeviceManagerTest, NamesAreCachedEvenWhenTheReadFailed) {
  test::CapturedLog log;
  sim.audio.failNameReads(builtIn, -10);
  AudioDeviceManager::Device first(sim.audioHardware, builtIn);
  EXPECT_EQ(first.description(), "AudioDevice(id: " + std::to_string(builtIn) + ", name: unknown)");
  EXPECT_TRUE(log.contains("Error getting audio device name for id " + std::to_string(builtIn) + ": -10"));
  int reads = sim.audio.nameReads();
  sim.loop.advance(299);
  EXPECT_EQ(AudioDeviceManager::Device(sim.audioHardware, builtIn).name(), "unknown");
  EXPECT_EQ(sim.audio.nameReads(), reads); // from the cache
  sim.loop.advance(1);
  AudioDeviceManager::Device(sim.audioHardware, builtIn).name();
  EXPECT_EQ(sim.audio.nameReads(), reads + 1);

  EXPECT_TRUE(first.isSpeaker());
  EXPECT_FALSE(AudioDeviceManager::Device(sim.audioHardware, micro).isSpeaker());
  EXPECT_EQ(AudioDeviceManager::multilineDescription({first, AudioDeviceManager::Device(sim.audioHardware, micro)}),
            "[AudioDevice(id: " + std::to_string(builtIn) +
                ", name: unknown),\n    AudioDevice(id: " + std::to_string(micro) + ", name: Built-in Microphone)]");
  EXPECT_EQ(AudioDeviceManager::multilineDescription({}), "[]");
}

TEST_F(AudioDeviceManagerTest, FindingTheAudioDeviceOfAHeadset) {
  test::CapturedLog log;
  auto bluetooth = headset();
  EXPECT_THROW(sim.outputDeviceManager.audioDevice(bluetooth), AudioError);
  EXPECT_TRUE(
      log.contains("Trying to set output device to <Matchable> but could not find it among the current devices"));
  EXPECT_TRUE(
      log.contains("Output devices: [AudioDevice(id: " + std::to_string(builtIn) + ", name: Built-in Speakers)]"));
  EXPECT_TRUE(log.contains("All devices: [AudioDevice"));
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(bluetooth));

  auto microphone = sim.audio.addDevice({"Mic", "bluez_source.AA-BB-CC-DD-EE-FF", false, true});
  EXPECT_EQ(sim.outputDeviceManager.audioDevice(bluetooth).id(), microphone);
  EXPECT_TRUE(log.contains("Found device <Matchable> , though it is not currently available as a speaker"));
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(bluetooth)); // not a speaker

  auto speaker = sim.audio.addDevice({"WH Headset", "bluez_sink.AA-BB-CC-DD-EE-FF", true, true});
  EXPECT_EQ(sim.outputDeviceManager.audioDevice(bluetooth).id(), speaker);
  EXPECT_TRUE(sim.outputDeviceManager.isPotentialOutput(bluetooth));
}

TEST_F(AudioDeviceManagerTest, AMouseIsNeverAPotentialOutput) {
  auto mouse = headset(5);
  sim.audio.addDevice({"WH Headset", "bluez_sink.AA-BB-CC-DD-EE-FF", true, true});
  EXPECT_FALSE(sim.outputDeviceManager.isPotentialOutput(mouse));
}

TEST_F(AudioDeviceManagerTest, SettingVerifiesAndSaysWhatWentWrong) {
  test::CapturedLog log({"LogAudioOutput"});
  AudioDeviceManager::Device speakers(sim.audioHardware, builtIn);
  sim.audio.makeDefault(AudioDirection::output, builtIn);
  sim.outputDeviceManager.setCurrent(speakers); // written again: output sets even if current
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::output), 1);
  EXPECT_TRUE(log.contains("Successfully set last output device to AudioDevice"));

  auto other = sim.audio.addDevice({"USB", "usb", true, false});
  AudioDeviceManager::Device usb(sim.audioHardware, other);
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
  EXPECT_TRUE(
      log.contains("Error -50 setting output device to AudioDevice(id: " + std::to_string(other) + ", name: USB)"));
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::anotherStaysCurrent), AudioError::Kind::succeededButVerificationFailed);
  EXPECT_TRUE(log.contains(", but current device is actually AudioDevice(id: " + std::to_string(builtIn)));
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::nothingReadable), AudioError::Kind::succeededButCantVerify);
  EXPECT_EQ(kindOf(SimAudioSystem::SetOutcome::takes), std::nullopt);

  InMemorySettingsStore onlyStore({{"OnlySetOutputDeviceIfNecessary", true}});
  SimulatedPlatform only(onlyStore);
  auto id = only.audio.addDevice({"Speakers", "s", true, false});
  only.audio.makeDefault(AudioDirection::output, id);
  only.outputDeviceManager.setCurrent(AudioDeviceManager::Device(only.audioHardware, id));
  EXPECT_EQ(only.audio.setCalls(AudioDirection::output), 0);
  EXPECT_TRUE(log.contains("output device was already set to AudioDevice"));
}

TEST_F(AudioDeviceManagerTest, TheInputIsRememberedAndRestoredFourTimes) {
  test::CapturedLog log({"LogAudioInput"});
  sim.audio.makeDefault(AudioDirection::input, micro);
  sim.inputDeviceManager.rememberCurrentDevice("test");
  sim.inputDeviceManager.rememberCurrentDevice("test again");
  EXPECT_TRUE(log.contains("Remember current input device AudioDevice(id: " + std::to_string(micro) +
                           ", name: Built-in Microphone) because test"));
  EXPECT_FALSE(log.contains("because test again")); // the same device is remembered quietly

  auto headsetMic = sim.audio.addDevice({"Headset Mic", "bluez_source.x", false, true});
  sim.audio.makeDefault(AudioDirection::input, headsetMic);
  sim.audio.setOutcome(SimAudioSystem::SetOutcome::refused);
  sim.inputDeviceManager.restoreLast();
  auto failures = [&] {
    int count = 0;
    for (const auto& message : log.messages()) count += message.starts_with("Unable to set input device");
    return count;
  };
  sim.loop.runDue();
  EXPECT_EQ(failures(), 1);
  sim.loop.advance(1.9);
  EXPECT_EQ(failures(), 1);
  sim.loop.advance(0.1);
  EXPECT_EQ(failures(), 2);
  sim.loop.advance(3);
  EXPECT_EQ(failures(), 3);
  sim.loop.advance(7);
  EXPECT_EQ(failures(), 4);
  EXPECT_TRUE(log.contains("Unable to set input device after 12.0 seconds: AudioDevice(id: " + std::to_string(micro)));

  sim.audio.setOutcome(SimAudioSystem::SetOutcome::takes);
  sim.inputDeviceManager.restoreLast();
  sim.loop.advance(12);
  EXPECT_EQ(sim.audio.defaultDevice(AudioDirection::input), micro);
  int alreadySet = 0;
  for (const auto& message : log.messages()) alreadySet += message.starts_with("input device was already set to");
  EXPECT_EQ(alreadySet, 3); // the later attempts find it done
}

TEST_F(AudioDeviceManagerTest, NothingRememberedNothingRestored) {
  test::CapturedLog log({"LogAudioInput"});
  sim.inputDeviceManager.restoreLast();
  sim.loop.advance(20);
  EXPECT_TRUE(log.contains("No last input device"));
  EXPECT_EQ(sim.audio.setCalls(AudioDirection::input), 0);
}

} // namespace lb
