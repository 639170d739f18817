#include "core/DeviceSetting.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

class DeviceSettingTest : public ::testing::Test {
protected:
  InMemorySettingsStore store;
  SimulatedPlatform sim{store};
};

TEST_F(DeviceSettingTest, AnEmptyDictionaryGivesEveryDefault) {
  test::CapturedLog log;
  sim.scriptsFolder.files["0.connected"] = "#!/bin/sh\necho hi\n";
  auto setting = DeviceSetting::make(sim.services, {});
  EXPECT_EQ(setting->deviceID(), 0);
  EXPECT_EQ(setting->device(), nullptr);
  EXPECT_TRUE(log.contains("No device address for options: "));
  EXPECT_EQ(setting->icon(), MenuBarIconOption::wand);
  EXPECT_TRUE(setting->isActive());
  EXPECT_FALSE(setting->connectionOnlyMode());
  EXPECT_FALSE(setting->keepDefaultAudioInput());
  EXPECT_FALSE(setting->runShellScriptAfterConnected());
  EXPECT_FALSE(setting->runShellScriptAfterDisconnected());
  EXPECT_FALSE(setting->showBatteryLevel());
  EXPECT_EQ(setting->shellScriptAfterConnected(), "#!/bin/sh\necho hi\n"); // read from 0.connected
  EXPECT_EQ(setting->shellScriptAfterDisconnected(), "#!/bin/sh\n");
  EXPECT_EQ(setting->description(), "<DeviceSetting: unknown (nil)>");
}

TEST_F(DeviceSettingTest, ScriptFilesReplaceWhatTheSavedOptionsSay) {
  sim.scriptsFolder.files["4.disconnected"] = "#!/bin/sh\nlogger bye\n";
  auto setting = DeviceSetting::make(
      sim.services,
      {{"deviceID", 4}, {"connected", "stale text"}, {"disconnected", "stale text"}, {"legacyKey", "kept"}});
  auto options = setting->options();
  EXPECT_FALSE(options.contains("connected"));
  EXPECT_EQ(options.at("disconnected"), SettingsValue("#!/bin/sh\nlogger bye\n"));
  EXPECT_EQ(options.at("legacyKey"), SettingsValue("kept"));
}

TEST_F(DeviceSettingTest, ANewDeviceStoresItsIDAndAddress) {
  test::CapturedLog log({"LogDock"});
  auto& headset = sim.world.addDevice("00-11-22-33-44-55", "WH Headset", 4);
  auto setting = DeviceSetting::make(sim.services, headset, 7);
  EXPECT_EQ(setting->deviceID(), 7);
  EXPECT_EQ(setting->options().at("device"), SettingsValue("00-11-22-33-44-55"));
  EXPECT_TRUE(log.contains("Setting device address to 00-11-22-33-44-55."));
  EXPECT_FALSE(log.contains("No device address")); // a device being added is no error
  EXPECT_EQ(setting->description(), "<DeviceSetting: WH Headset>");
  EXPECT_EQ(setting->shortCutKey(), "shortcutDictForDevice7");
  EXPECT_EQ(setting->oldShortCutKey(), "shortcutForDevice7");

  setting->setDevice(&headset);
  EXPECT_EQ(setting->options().at("device"), SettingsValue("00-11-22-33-44-55"));
  setting->setDevice(nullptr);
  EXPECT_FALSE(setting->options().contains("device"));
}

TEST_F(DeviceSettingTest, OptionsOfTheWrongTypeReadAsTheirDefaults) {
  auto setting = DeviceSetting::make(sim.services, {{"deviceID", "12"},
                                                    {"keepDefaultAudioInput", "true"},
                                                    {"isActive", 0},
                                                    {"icon", "no-such-picture"},
                                                    {"connected", 3}});
  EXPECT_EQ(setting->deviceID(), 0);
  EXPECT_FALSE(setting->keepDefaultAudioInput());
  EXPECT_TRUE(setting->isActive());
  EXPECT_EQ(setting->icon(), MenuBarIconOption::wand);
  EXPECT_EQ(setting->options().at("icon"), SettingsValue("no-such-picture")); // kept until set
  setting->setIcon(MenuBarIconOption::headphones);
  EXPECT_EQ(setting->options().at("icon"), SettingsValue("headphones"));
}

TEST_F(DeviceSettingTest, TheFirstObservationOnlyRecordsTheState) {
  test::CapturedLog log({"LogConnect", "LogIsConnected"});
  sim.world.addDevice("aa", "Mouse", 5);
  sim.world.setConnected("aa", true);
  auto setting = DeviceSetting::make(sim.services, {{"deviceID", 1}, {"device", "aa"}});
  EXPECT_FALSE(setting->isConnected());
  sim.loop.advance(1.0); // the slow timer
  EXPECT_EQ(setting->isConnected(), true);
  EXPECT_TRUE(log.contains("isConnected is now true <DeviceSetting: Mouse> because timer"));
  EXPECT_TRUE(log.contains(
      "Previous connection state was unknown: <DeviceSetting: Mouse> so won't run script or change input"));

  sim.world.setConnected("aa", false);
  sim.loop.advance(1.0);
  EXPECT_EQ(setting->isConnected(), false);
  EXPECT_EQ(setting->isAudioOutput(), false);
}

TEST_F(DeviceSettingTest, TheSlowTimerFollowsItsTunables) {
  sim.world.addDevice("aa", "Mouse", 5);
  {
    InMemorySettingsStore offStore({{"ConnectionUpdateUseTimer", false}});
    SimulatedPlatform off(offStore);
    off.world.addDevice("aa", "Mouse", 5);
    auto before = off.loop.activeTimers().size();
    auto quiet = DeviceSetting::make(off.services, {{"device", "aa"}});
    EXPECT_EQ(off.loop.activeTimers().size(), before);
  }
  InMemorySettingsStore slowStore({{"ConnectionUpdateTimerInterval", 5.0}});
  SimulatedPlatform slow(slowStore);
  slow.world.addDevice("aa", "Mouse", 5);
  auto before = slow.loop.activeTimers().size();
  auto setting = DeviceSetting::make(slow.services, {{"device", "aa"}});
  ASSERT_EQ(slow.loop.activeTimers().size(), before + 1);
  EXPECT_DOUBLE_EQ(slow.loop.activeTimers().back().interval.count(), 5.0);
  std::weak_ptr<DeviceSetting> watch = setting;
  setting.reset();
  EXPECT_TRUE(watch.expired()); // the timer holds it weakly
  EXPECT_EQ(slow.loop.activeTimers().size(), before);
}

TEST_F(DeviceSettingTest, StatusItemSetUpAndRemoval) {
  sim.world.addDevice("aa", "Keyboard", 5);
  auto setting = DeviceSetting::make(sim.services, {{"deviceID", 3}, {"device", "aa"}, {"icon", "keyboard"}});
  setting->setupStatusItem();
  ASSERT_EQ(sim.statusBar.items().size(), 1u);
  auto* item = sim.statusBar.items()[0];
  EXPECT_DOUBLE_EQ(item->length, 27.0); // tray thickness + 5
  EXPECT_EQ(item->label, "Keyboard");
  EXPECT_TRUE(sim.shortcuts.isBound("shortcutDictForDevice3"));
  EXPECT_EQ(sim.world.subscriptionCount(), 1u); // its disconnect notification
  EXPECT_EQ(SimImages::describe(item->image()), "keyboard");
  EXPECT_TRUE(item->image()->isTemplate());
  EXPECT_EQ(item->toolTip, "Keyboard - Disconnected.");
  EXPECT_EQ(item->identity, "lanternbud-device-3"); // no address to name it by

  // The menu offers what a click does; its two lines are read as it opens.
  using Lines = std::vector<std::string>;
  EXPECT_EQ(item->openMenu(), (Lines{"Connect", "-", "Keyboard - Disconnected", "Battery Level: Unknown", "-",
                                     "Settings…", "-", "Quit"}));
  sim.world.setConnected("aa", true);
  sim.loop.advance(1);
  EXPECT_EQ(item->openMenu()[0], "Disconnect");
  EXPECT_EQ(item->openMenu()[2], "Keyboard - Connected");
  item->choose("Settings…");
  EXPECT_EQ(sim.windows.preferencesShown, 1);
  item->choose("Quit");
  EXPECT_TRUE(sim.windows.terminationRequested);

  int redraws = item->redraws;
  setting->setIcon(MenuBarIconOption::keyboard);
  EXPECT_EQ(item->redraws, redraws); // unchanged: no redraw
  setting->setShowBatteryLevel(true);
  EXPECT_EQ(item->redraws, redraws + 1);

  setting->setupStatusItem(); // a second set-up creates nothing
  EXPECT_EQ(sim.statusBar.items().size(), 1u);

  setting->removeStatusItem();
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.shortcuts.isBound("shortcutDictForDevice3"));
  EXPECT_EQ(sim.world.subscriptionCount(), 0u);
}

TEST_F(DeviceSettingTest, AnInactiveDeviceGetsNoStatusItemButIsStillObserved) {
  sim.world.addDevice("aa", "Keyboard", 5);
  sim.world.setConnected("aa", true);
  auto setting = DeviceSetting::make(sim.services, {{"device", "aa"}, {"isActive", false}});
  setting->setupStatusItem();
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_EQ(setting->isConnected(), true);
}

TEST_F(DeviceSettingTest, DisconnectNotificationsUpdateTheStateUnlessSwitchedOff) {
  sim.world.addDevice("aa", "Keyboard", 5);
  sim.world.setConnected("aa", true);
  auto setting = DeviceSetting::make(sim.services, {{"device", "aa"}});
  setting->setupStatusItem();
  EXPECT_EQ(setting->isConnected(), true);
  sim.world.setConnected("aa", false);
  sim.loop.runDue(); // long before the slow timer
  EXPECT_EQ(setting->isConnected(), false);

  InMemorySettingsStore offStore({{"DeviceSettingDisableDisconnectObservation", true}});
  SimulatedPlatform off(offStore);
  off.world.addDevice("aa", "Keyboard", 5);
  auto unobserved = DeviceSetting::make(off.services, {{"device", "aa"}});
  unobserved->setupStatusItem();
  EXPECT_EQ(off.world.subscriptionCount(), 0u);
}

} // namespace lb
