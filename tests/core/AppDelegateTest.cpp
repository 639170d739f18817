#include "core/AppDelegate.h"
#include "core/SettingKeys.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace lb {

// The login choice applies at launch and at once whenever it changes.
TEST(AppDelegate, WithNoDevicesLaunchShowsThePreferencesAndNoTrayItem) {
  test::CapturedLog log({"LogDock"});
  InMemorySettingsStore store({{"hideDockIcon", true}});
  SimulatedPlatform sim(store);
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  EXPECT_EQ(sim.windows.preferencesShown, 1);
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.windows.activationPolicy); // left alone despite hideDockIcon
  EXPECT_TRUE(log.contains("Showing preferences because no devices have been added: nil"));

  sim.windows.canShowPreferences = false;
  EXPECT_TRUE(app.applicationShouldHandleReopen());
  EXPECT_TRUE(log.contains("Showing preferences because of reopen."));

  sim.defaults.setValue(settingKey::launchAtLogin, true);
  sim.defaults.setValue("LogConnect", true); // another key changes nothing
  sim.defaults.removeValue(settingKey::launchAtLogin);
  EXPECT_EQ(sim.loginItems.requests, (std::vector<bool>{false, true, false}));

  // The tray's paint follows the desktop, and the user's colour wins while set.
  sim.statusBar.panel.portalScheme = PanelSignals::Scheme::preferDark;
  sim.statusBar.panelChanged();
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#ffffff", false}));
  sim.defaults.setValue("TrayIconColor", "#ff8800");
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#ff8800", false}));
}

// Quitting saves the list before any tray item goes; a refused login item
// is only logged.
TEST(AppDelegate, WithDevicesLaunchFillsTheTrayAndQuittingSavesFirst) {
  test::CapturedLog log({"LogDock"});
  const SettingsValue devices = SettingsValue::Array{SettingsValue::Dictionary{{"deviceID", 2}, {"device", "b"}},
                                                     SettingsValue::Dictionary{{"deviceID", 1}, {"device", "a"}}};
  InMemorySettingsStore store({{"devices", devices}, {"hideDockIcon", true}, {settingKey::launchAtLogin, true}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  sim.loginItems.accepts = false;
  AppDelegate app(sim.services);
  app.applicationDidFinishLaunching();
  EXPECT_TRUE(log.contains("Hiding Dock icon"));
  EXPECT_EQ(sim.windows.activationPolicy, ActivationPolicy::accessory);
  EXPECT_EQ(sim.statusBar.items().size(), 2u);
  EXPECT_TRUE(log.contains("Failed to set login item state to: true"));

  std::vector<std::size_t> savedCountAtEachRemoval;
  sim.statusBar.onRemove = [&](const SimStatusBar::Item&) {
    savedCountAtEachRemoval.push_back(store.value("devices")->as<SettingsValue::Array>()->size());
  };
  app.applicationWillTerminate();
  EXPECT_EQ(savedCountAtEachRemoval, (std::vector<std::size_t>{2, 2}));
}

} // namespace lb
