#include "core/DeviceSetting.h"
#include "linux/audio/PulseAudioSystem.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/RequireService.h"
#include "tests/support/PulseServer.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:11:22:33:44:55";

class PulseAudioTest : public ::testing::Test {
protected:
  void SetUp() override {
    LB_REQUIRE_SERVICE(pulse.skipReason());
    headsetModule = pulse.loadBluetoothSink("headset", headsetAddress, "WH Headset");
    pulse.loadBluetoothSource("headset_mic", "headset", headsetAddress, "WH Microphone");
    audio = std::make_unique<PulseAudioSystem>(pulse.server());
    ASSERT_TRUE(test::waitUntil([&] { return find("WH Microphone").has_value(); }));
  }

  std::optional<AudioDeviceID> find(const std::string& name) {
    for (auto id : audio->deviceIDs()) {
      if (audio->name(id).value == name) return id;
    }
    return std::nullopt;
  }

  test::PulseServer pulse;
  std::string headsetModule;
  std::unique_ptr<PulseAudioSystem> audio;
};

} // namespace

// From the mirror: the queries send the server nothing.
TEST_F(PulseAudioTest, ListsSinksAndSourcesWithoutMonitorsAndSetsTheDefaults) {
  const auto requests = audio->requestsSent();
  auto builtIn = find("Built-in"), headset = find("WH Headset"), microphone = find("WH Microphone");
  ASSERT_TRUE(builtIn && headset && microphone);
  EXPECT_EQ(audio->deviceIDs().size(), 3u); // the monitors are not microphones
  EXPECT_EQ(audio->uid(*builtIn).value, "builtin");
  EXPECT_EQ(audio->uid(*headset).value, "headset 00:11:22:33:44:55");
  EXPECT_EQ(audio->transportType(*headset).value, AudioSystem::bluetoothTransport);
  EXPECT_EQ(audio->transportType(*builtIn).value, 0u);
  EXPECT_EQ(audio->hasOutputStreams(*headset).value, true);
  EXPECT_EQ(audio->hasOutputStreams(*microphone).value, false);
  EXPECT_NE(audio->name(12345).status, 0);
  EXPECT_EQ(audio->requestsSent(), requests);

  // PulseAudio's own Bluetooth module gives the address in device.string.
  pulse.pactl("load-module module-null-sink sink_name=speaker \"sink_properties='device.bus=bluetooth "
              "device.string=aa_bb_cc_dd_ee_ff device.description=Speaker'\"");
  ASSERT_TRUE(test::waitUntil([&] { return find("Speaker").has_value(); }));
  EXPECT_EQ(audio->uid(*find("Speaker")).value, "speaker AA:BB:CC:DD:EE:FF");

  // Setting the defaults is confirmed before it returns.
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::output, *headset), 0);
  EXPECT_EQ(audio->defaultDevice(AudioDirection::output), *headset); // at once, no waiting
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::input, *microphone), 0);
  EXPECT_EQ(audio->defaultDevice(AudioDirection::input), *microphone);
  EXPECT_NE(audio->setDefaultDevice(AudioDirection::input, *headset), 0); // a sink is no input

  pulse.pactl("set-default-sink builtin"); // the system switches by itself
  EXPECT_TRUE(test::waitUntil([&] { return audio->defaultDevice(AudioDirection::output) == find("Built-in"); }));
}

// Each change of the mirror is told, a volume change none; a device that
// comes back keeps its ID, and what the program's own output manager read of
// the headset that had its sink's name is not used for the one that has it now.
TEST_F(PulseAudioTest, ADeviceThatComesAndGoesKeepsItsIDAndIsTold) {
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  sim.world.addDevice(headsetAddress, "WH-1000", 4);
  sim.world.setConnected(headsetAddress, true);
  auto setting = DeviceSetting::make(sim.services, {{"deviceID", 1}, {"device", headsetAddress}});
  AudioHardware hardware(*audio, sim.loop);
  OutputDeviceManager outputs(hardware, sim.tunables);
  EXPECT_TRUE(outputs.isPotentialOutput(*setting));
  std::atomic<int> told = 0;
  std::atomic<bool> fenced = false, marked = false;
  outputs.setChangeHandler([&] {
    ++told;
    fenced = fenced || find("Fence").has_value();
    marked = marked || find("Marker").has_value();
  });
  auto headset = *find("WH Headset");
  pulse.pactl("unload-module " + headsetModule); // takes the remapped microphone with it
  EXPECT_TRUE(test::waitUntil([&] { return !find("WH Headset") && told >= 2; }));
  EXPECT_NE(audio->name(headset).status, 0);
  pulse.loadBluetoothSink("headset", "66:77:88:99:AA:BB", "Other Headset");
  EXPECT_TRUE(test::waitUntil([&] { return find("Other Headset") == headset && told >= 3; }));
  EXPECT_FALSE(outputs.isPotentialOutput(*setting));

  // The server's events come in order, each told before the next is read:
  // between two sinks' tells, one for the volume change would be counted.
  pulse.pactl("load-module module-null-sink sink_name=fence sink_properties=device.description=Fence");
  ASSERT_TRUE(test::waitUntil([&] { return fenced.load(); }));
  const int beforeVolume = told;
  pulse.pactl("set-sink-volume builtin 40%");
  pulse.pactl("load-module module-null-sink sink_name=marker sink_properties=device.description=Marker");
  ASSERT_TRUE(test::waitUntil([&] { return marked.load(); }));
  EXPECT_EQ(told, beforeVolume + 1);
  outputs.setChangeHandler({});
}

// Lost, the server is asked for again; meanwhile nothing can be set.
TEST_F(PulseAudioTest, AServerRestartIsFollowed) {
  pulse.stop();
  EXPECT_TRUE(
      test::waitUntil([&] { return audio->deviceIDs().empty() && !audio->defaultDevice(AudioDirection::output); }));
  EXPECT_NE(audio->setDefaultDevice(AudioDirection::output, 1), 0);

  pulse.start();
  ASSERT_TRUE(pulse.skipReason().empty());
  EXPECT_TRUE(test::waitUntil([&] { return find("Built-in").has_value(); }, 15));
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::output, *find("Built-in")), 0);
}

// Whether the server is gone or never was, it is asked for after growing
// delays (at 0, 0.5, 1.5 and 3.5 s), not in a loop, and the program goes on
// without audio devices.
TEST(PulseAudioAway, NoServerMeansNoDevicesAndAFewAttempts) {
  test::TemporaryDirectory folder;
  auto audio = std::make_unique<PulseAudioSystem>("unix:" + (folder / "none").string());
  EXPECT_FALSE(audio->serverAnswers());
  EXPECT_TRUE(audio->deviceIDs().empty());
  EXPECT_TRUE(test::waitUntil([&] { return audio->connectionAttempts() >= 3; }, 15));
  EXPECT_LE(audio->connectionAttempts(), 4u); // a loop would have tried thousands of times
  audio.reset();                              // while a reconnection waits
}

} // namespace lb
