#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

class DeviceSettingTest : public ::testing::Test {
protected:
  InMemorySettingsStore store;
  SimulatedPlatform sim{store};
};

// Script files replace what the saved options say; what the program does
// not know is kept.
TEST_F(DeviceSettingTest, AnEmptyDictionaryGivesEveryDefaultAndUnknownValuesAreKept) {
  test::CapturedLog log;
  sim.scriptsFolder.files["0.connected"] = "#!/bin/sh\necho hi\n";
  auto setting = DeviceSetting::make(sim.services, {});
  EXPECT_EQ(setting->device(), nullptr);
  EXPECT_TRUE(log.contains("No device address for options: "));
  EXPECT_EQ(setting->shellScriptAfterConnected(), "#!/bin/sh\necho hi\n"); // read from 0.connected
  EXPECT_EQ(setting->shellScriptAfterDisconnected(), "#!/bin/sh\n");
  setting->setShellScriptAfterConnected(std::nullopt); // cleared in the editor
  EXPECT_EQ(setting->shellScriptAfterConnected(), "#!/bin/sh\n");
  EXPECT_EQ(setting->description(), "<DeviceSetting: unknown (nil)>");

  sim.scriptsFolder.files["4.disconnected"] = "#!/bin/sh\nlogger bye\n";
  auto older = DeviceSetting::make(sim.services, {{"deviceID", 4},
                                                  {"connected", "stale text"},
                                                  {"disconnected", "stale text"},
                                                  {"legacyKey", "kept"},
                                                  {"icon", "no-such-picture"}});
  const auto options = older->options();
  EXPECT_FALSE(options.contains("connected"));
  EXPECT_EQ(options.at("disconnected"), SettingsValue("#!/bin/sh\nlogger bye\n"));
  EXPECT_EQ(options.at("legacyKey"), SettingsValue("kept"));
  EXPECT_EQ(options.at("icon"), SettingsValue("no-such-picture")); // until another is chosen
  EXPECT_EQ(older->icon(), MenuBarIconOption::wand);
}

TEST_F(DeviceSettingTest, ANewDeviceStoresItsIDAndAddress) {
  test::CapturedLog log({"LogDock"});
  auto& headset = sim.world.addDevice("00-11-22-33-44-55", "WH Headset", 4);
  auto setting = DeviceSetting::make(sim.services, headset, 7);
  EXPECT_EQ(setting->options().at("device"), SettingsValue("00-11-22-33-44-55"));
  EXPECT_TRUE(log.contains("Setting device address to 00-11-22-33-44-55."));
  EXPECT_FALSE(log.contains("No device address")); // a device being added is no error
  EXPECT_EQ(setting->description(), "<DeviceSetting: WH Headset>");
  setting->setDevice(&headset); // the one it has: nothing changes
  EXPECT_EQ(setting->options().at("device"), SettingsValue("00-11-22-33-44-55"));
  setting->setDevice(nullptr);
  EXPECT_FALSE(setting->options().contains("device"));
}

// As scripts ask: each request says what it did, and one made while an
// attempt runs is ignored.
TEST(DeviceSetting, RequestsSayWhatTheyDidAndARunningAttemptIgnoresMore) {
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::succeedsAfter(3));
  d.setting->setScriptingIsConnected(false);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::unchanged);
  EXPECT_EQ(d.setting->connect(), ConnectionOutcome::connecting);
  for (int i = 0; i < 20; ++i) d.setting->setScriptingIsConnected(true);
  EXPECT_EQ(d.setting->toggleConnection(), ConnectionOutcome::busy);
  d.sim.loop.advance(4);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
  EXPECT_TRUE(d.setting->scriptingIsConnected());
  EXPECT_EQ(d.setting->connect(), ConnectionOutcome::unchanged);

  d.setting->setConnectionOnlyMode(true);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::connectionOnly);
  d.setting->setConnectionOnlyMode(false);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::disconnecting);
  d.sim.loop.advance(3);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_FALSE(d.setting->scriptingIsConnected());
}

} // namespace lb
