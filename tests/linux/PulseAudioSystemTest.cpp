#include "core/OutputDeviceManager.h"
#include "linux/audio/PulseAudioSystem.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/CapturedLog.h"
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
    ASSERT_TRUE(test::eventually([&] { return find("WH Microphone").has_value(); }));
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

TEST_F(PulseAudioTest, ListsSinksAndSourcesWithoutMonitors) {
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

  // PulseAudio's own Bluetooth module gives the address in device.string.
  pulse.pactl("load-module module-null-sink sink_name=speaker \"sink_properties='device.bus=bluetooth "
              "device.string=aa_bb_cc_dd_ee_ff device.description=Speaker'\"");
  ASSERT_TRUE(test::eventually([&] { return find("Speaker").has_value(); }));
  EXPECT_EQ(audio->uid(*find("Speaker")).value, "speaker AA:BB:CC:DD:EE:FF");
}

TEST_F(PulseAudioTest, SettingTheDefaultsIsConfirmedBeforeItReturns) {
  auto headset = *find("WH Headset"), microphone = *find("WH Microphone");
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::output, headset), 0);
  EXPECT_EQ(audio->defaultDevice(AudioDirection::output), headset); // at once, no waiting
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::input, microphone), 0);
  EXPECT_EQ(audio->defaultDevice(AudioDirection::input), microphone);
  EXPECT_NE(pulse.pactl("get-default-sink").find("headset"), std::string::npos);
  EXPECT_NE(audio->setDefaultDevice(AudioDirection::input, headset), 0); // a sink is no input

  pulse.pactl("set-default-sink builtin"); // the system switches by itself
  EXPECT_TRUE(test::eventually([&] { return audio->defaultDevice(AudioDirection::output) == find("Built-in"); }));
}

// Each change of the mirror is told; a volume change is none.
TEST_F(PulseAudioTest, ADeviceThatComesAndGoesKeepsItsIDAndIsTold) {
  std::atomic<int> told = 0;
  audio->setChangeHandler([&] { ++told; });
  auto headset = *find("WH Headset");
  pulse.pactl("unload-module " + headsetModule); // takes the remapped microphone with it
  EXPECT_TRUE(test::eventually([&] { return !find("WH Headset"); }));
  EXPECT_NE(audio->name(headset).status, 0);
  EXPECT_TRUE(test::eventually([&] { return told >= 2; }));

  told = 0;
  pulse.loadBluetoothSink("headset", headsetAddress, "WH Headset");
  EXPECT_TRUE(test::eventually([&] { return find("WH Headset") == headset; }));
  EXPECT_TRUE(test::eventually([&] { return told >= 1; }));
  // The load's last events, however slow the machine: until a quiet spell.
  for (int before = -1, spells = 0; before != told && spells < 20; ++spells) {
    before = told;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  const int beforeVolume = told;
  pulse.pactl("set-sink-volume builtin 40%");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(told, beforeVolume);
  audio->setChangeHandler({});
}

TEST_F(PulseAudioTest, AServerRestartIsFollowed) {
  test::CapturedLog log;
  pulse.stop();
  EXPECT_TRUE(
      test::eventually([&] { return audio->deviceIDs().empty() && !audio->defaultDevice(AudioDirection::output); }));
  EXPECT_TRUE(log.contains("Lost the sound server"));
  auto started = std::chrono::steady_clock::now();
  EXPECT_NE(audio->setDefaultDevice(AudioDirection::output, 1), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(3));

  pulse.start();
  ASSERT_TRUE(pulse.skipReason().empty());
  EXPECT_TRUE(test::eventually([&] { return find("Built-in").has_value(); }, 15));
  EXPECT_EQ(audio->setDefaultDevice(AudioDirection::output, *find("Built-in")), 0);
}

// Whether the server is gone or never was, it is asked for after growing
// delays, not in a loop, and the program goes on without audio devices.
TEST(PulseAudioAway, NoServerMeansNoDevicesAndAFewAttempts) {
  test::CapturedLog log;
  test::TemporaryDirectory folder;
  auto started = std::chrono::steady_clock::now();
  auto audio = std::make_unique<PulseAudioSystem>("unix:" + (folder / "none").string());
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10)); // it ends at all
  EXPECT_FALSE(audio->serverAnswers());
  EXPECT_TRUE(audio->deviceIDs().empty());
  EXPECT_TRUE(log.contains("No sound server answers"));
  std::this_thread::sleep_for(std::chrono::seconds(2));
  EXPECT_LE(audio->connectionAttempts(), 4u); // at 0, 0.5 and 1.5 s
  audio.reset();                              // while a reconnection waits
}

TEST_F(PulseAudioTest, QueriesSendTheServerNothing) {
  const auto before = audio->requestsSent();
  for (int i = 0; i < 1000; ++i) {
    for (auto id : audio->deviceIDs()) {
      audio->name(id);
      audio->uid(id);
      audio->hasOutputStreams(id);
    }
    audio->defaultDevice(AudioDirection::output);
  }
  EXPECT_EQ(audio->requestsSent(), before);
}

// The program's own output manager, unchanged, on a real server.
TEST_F(PulseAudioTest, TheOutputManagerFindsAndSetsAHeadset) {
  struct Headset : BluetoothMatchable {
    struct Device : BluetoothDevice {
      std::string addressString() const override { return "00:11:22:33:44:55"; }
      std::optional<std::string> name() const override { return "WH-1000"; }
      bool isConnected() const override { return true; }
      std::uint32_t majorDeviceClass() const override { return 4; }
      IOReturn openConnection(std::optional<std::uint16_t>) override { return {}; }
      IOReturn closeConnection() override { return {}; }
    };
    std::shared_ptr<BluetoothDevice> device() const override { return std::make_shared<Device>(); }
    std::optional<std::string> deviceName() const override { return "WH-1000"; }
    std::string description() const override { return "<Headset>"; }
  } headset;
  VirtualEventLoop clock;
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  AudioHardware hardware(*audio, clock);
  OutputDeviceManager outputs(hardware, tunables);
  pulse.pactl("set-default-sink builtin");
  ASSERT_TRUE(test::eventually([&] { return audio->defaultDevice(AudioDirection::output) == find("Built-in"); }));
  EXPECT_TRUE(outputs.isPotentialOutput(headset));
  EXPECT_FALSE(outputs.isCurrent(headset));
  outputs.setCurrent(headset); // throws unless the server confirms it
  EXPECT_TRUE(outputs.isCurrent(headset));

  // The sink's name comes again, for another headset: what was read of the
  // first is not used for it.
  outputs.setChangeHandler([] {});
  pulse.pactl("unload-module " + headsetModule);
  ASSERT_TRUE(test::eventually([&] { return !find("WH Headset"); }));
  pulse.loadBluetoothSink("headset", "66:77:88:99:AA:BB", "Other Headset");
  ASSERT_TRUE(test::eventually([&] { return find("Other Headset").has_value(); }));
  EXPECT_FALSE(outputs.isPotentialOutput(headset));
  outputs.setChangeHandler({});
}

} // namespace lb
