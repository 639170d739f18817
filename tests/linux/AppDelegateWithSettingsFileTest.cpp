#include "core/AppDelegate.h"
#include "foundation/JsonSettingsStore.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace lb {

// The spine over the simulated devices but a real settings file: start,
// load, add, sort, remove, quit, and read back what was saved.
TEST(AppDelegateWithSettingsFile, ALaunchAndQuitKeepTheUsersDevices) {
  test::TemporaryDirectory home;
  auto file = home / "lanternbud/settings.json";
  std::filesystem::create_directories(file.parent_path());
  test::writeFile(file, R"({
    "devices": [
      {"deviceID": 3, "device": "cc", "icon": "mouse", "fromAnOlderVersion": 1},
      {"deviceID": 1, "device": "aa"}
    ],
    "shortcutDictForDevice1": {"keyCode": 4}
  })");

  {
    JsonSettingsStore store(file);
    SimulatedPlatform sim(store);
    sim.world.addDevice("aa", "Zed Headphones", 4);
    sim.world.addDevice("bb", "Beta Keyboard", 5);
    sim.world.addDevice("cc", "Alpha Mouse", 5);
    AppDelegate app(sim.services);
    app.applicationDidFinishLaunching();
    auto& registry = *app.deviceSettingManager();
    ASSERT_EQ(registry.deviceSettingList().size(), 2u);

    registry.add(*sim.bluetooth.deviceWithAddressString("bb"));
    ASSERT_EQ(registry.deviceSettingList().size(), 3u);
    EXPECT_EQ(registry.deviceSettingList()[1]->deviceID(), 4); // sorted between Alpha and Zed
    registry.remove(2);                                        // Zed Headphones, ID 1
    sim.loop.advance(30);
    app.applicationWillTerminate();
  }

  JsonSettingsStore reread(file);
  EXPECT_EQ(reread.value("currentSettingVersion"), SettingsValue("2.8.2"));
  EXPECT_FALSE(reread.value("shortcutDictForDevice1"));
  auto devices = reread.value("devices");
  ASSERT_TRUE(devices);
  EXPECT_EQ(*devices, SettingsValue(SettingsValue::Array{
                          SettingsValue::Dictionary{{"deviceID", 3},
                                                    {"device", "cc"},
                                                    {"icon", "mouse"},
                                                    {"fromAnOlderVersion", 1},
                                                    {"deviceName", "Alpha Mouse"}},
                          SettingsValue::Dictionary{{"deviceID", 4}, {"device", "bb"}, {"deviceName", "Beta Keyboard"}},
                      }));
}

} // namespace lb
