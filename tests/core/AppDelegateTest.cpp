#include "core/AppDelegate.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

namespace {
SettingsValue savedDevices() {
  return SettingsValue::Array{SettingsValue::Dictionary{{"deviceID", 2}, {"device", "b"}},
                              SettingsValue::Dictionary{{"deviceID", 1}, {"device", "a"}}};
}
} // namespace

TEST(AppDelegate, WithNoDevicesLaunchShowsThePreferencesAndNoTrayItem) {
  test::CapturedLog log({"LogDock", "LogLogin"});
  InMemorySettingsStore store({{"hideDockIcon", true}});
  SimulatedPlatform sim(store);
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  EXPECT_EQ(sim.windows.preferencesShown, 1);
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.windows.activationPolicy); // left alone despite hideDockIcon
  EXPECT_TRUE(log.contains("Showing preferences because no devices have been added: nil"));
  EXPECT_TRUE(log.contains("Done showing preferences."));
  EXPECT_EQ(sim.loginItems.requests, std::vector<bool>{false});
  EXPECT_TRUE(log.contains("Updated login item state to: false"));

  sim.windows.canShowPreferences = false;
  EXPECT_TRUE(app.applicationShouldHandleReopen());
  EXPECT_TRUE(log.contains("Showing preferences because of reopen."));
}

TEST(AppDelegate, WithDevicesLaunchFillsTheTrayInSavedOrder) {
  test::CapturedLog log({"LogDock"});
  InMemorySettingsStore store({{"devices", savedDevices()}, {"hideDockIcon", true}, {"launchAtLogin", true}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  EXPECT_TRUE(log.contains("Hiding Dock icon"));
  EXPECT_EQ(sim.windows.activationPolicy, ActivationPolicy::accessory);
  EXPECT_EQ(sim.windows.preferencesShown, 0);
  ASSERT_EQ(sim.statusBar.items().size(), 2u);
  EXPECT_EQ(sim.statusBar.items()[0]->label, "Beta");
  EXPECT_EQ(sim.statusBar.items()[1]->label, "Alpha");
  EXPECT_TRUE(sim.loginItems.enabled);
  EXPECT_TRUE(sim.windows.landingShownUnder.empty());
}

TEST(AppDelegate, QuittingSavesBeforeAnyTrayItemGoes) {
  InMemorySettingsStore store({{"devices", savedDevices()}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  sim.world.addDevice("c", "Gamma", 5);
  app.deviceSettingManager()->add(*sim.bluetooth.deviceWithAddressString("c"));

  std::vector<std::size_t> savedCountAtEachRemoval;
  sim.statusBar.onRemove = [&](const SimStatusBar::Item&) {
    savedCountAtEachRemoval.push_back(store.value("devices")->as<SettingsValue::Array>()->size());
  };
  app.quit();
  EXPECT_TRUE(sim.windows.terminationRequested);
  app.applicationWillTerminate();
  EXPECT_EQ(savedCountAtEachRemoval, (std::vector<std::size_t>{3, 3, 3}));
}

// Only the command line asks for it: a stored value (any client of the
// session bus can store one) must not keep the program from starting.
TEST(AppDelegate, PrintModeComesFromTheCommandLineOnlyAndRunsNothingElse) {
  std::string printed;
  bool ran = false;
  EXPECT_EQ(AppDelegate::processEntry(
                UserDefaults::argumentDomain({"-PrintBatteryInfo", "00-11"}),
                [&](const std::string& a) { printed = a; }, [&] { ran = true; }),
            0);
  EXPECT_EQ(printed, "00-11");
  EXPECT_FALSE(ran);

  InMemorySettingsStore store(SettingsValue::Dictionary{{"PrintBatteryInfo", "00-11"}});
  UserDefaults stored(store);
  ASSERT_TRUE(stored.object("PrintBatteryInfo"));
  EXPECT_EQ(AppDelegate::processEntry(
                {}, [&](const std::string& a) { printed = "again " + a; }, [&] { ran = true; }),
            0);
  EXPECT_TRUE(ran);
  EXPECT_EQ(printed, "00-11");
}

TEST(AppDelegate, TheLoginChoiceAppliesAtOnceWhenChangedAndARefusalIsLogged) {
  test::CapturedLog log;
  InMemorySettingsStore store({{"launchAtLogin", true}});
  SimulatedPlatform sim(store);
  sim.loginItems.accepts = false;
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  EXPECT_TRUE(log.contains("Failed to set login item state to: true simulated refusal"));

  sim.loginItems.accepts = true;
  sim.defaults.setValue("launchAtLogin", false);
  sim.defaults.setValue("LogConnect", true); // another key changes nothing
  EXPECT_EQ(sim.loginItems.requests, (std::vector<bool>{true, false}));
  sim.defaults.removeValue("launchAtLogin");
  sim.defaults.setValue("launchAtLogin", true);
  EXPECT_EQ(sim.loginItems.requests, (std::vector<bool>{true, false, false, true}));
  EXPECT_TRUE(sim.loginItems.enabled);
}

} // namespace lb
