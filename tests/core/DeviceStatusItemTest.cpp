#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

using Button = StatusItemClick::Button;

TEST(DeviceStatusItem, SetUpAndRemoval) {
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  sim.world.addDevice("aa", "Keyboard", 5);
  auto setting = DeviceSetting::make(sim.services, {{"deviceID", 3}, {"device", "aa"}, {"icon", "keyboard"}});
  setting->setupStatusItem();
  setting->setupStatusItem(); // a second set-up creates nothing
  ASSERT_EQ(sim.statusBar.items().size(), 1u);
  auto* item = sim.statusBar.items()[0];
  EXPECT_DOUBLE_EQ(item->length, 27.0); // tray thickness + 5
  EXPECT_EQ(item->label, "Keyboard");
  EXPECT_TRUE(sim.shortcuts.isBound("shortcutDictForDevice3"));
  EXPECT_EQ(SimImages::describe(item->image()), "keyboard");
  EXPECT_EQ(item->identity, "lanternbud-device-3"); // no address to name it by

  item->choose("Settings…");
  EXPECT_EQ(sim.windows.preferencesShown, 1);
  item->choose("Quit");
  EXPECT_TRUE(sim.windows.terminationRequested);

  const int redraws = item->redraws;
  setting->setIcon(MenuBarIconOption::keyboard); // unchanged: no redraw
  setting->startProgress();
  setting->setShowBatteryLevel(true); // the spinner stays
  EXPECT_EQ(item->redraws, redraws);
  setting->stopProgress();
  EXPECT_EQ(item->redraws, redraws + 1);

  setting->removeStatusItem();
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.shortcuts.isBound("shortcutDictForDevice3"));
}

// Control, right and middle clicks open the menu, as do clicks on the
// spinner and connect-only clicks that would disconnect; other clicks and
// the shortcut toggle.
TEST(DeviceStatusItem, ClicksAndTheShortcutToggleOrOpenTheMenu) {
  test::CapturedLog log({"LogHotKey"});
  test::SimulatedDevice d;
  d.item().click(Button::left, true);
  d.item().click(Button::right);
  d.item().click(Button::middle);
  EXPECT_EQ(d.item().menuPopUps, 3);
  EXPECT_FALSE(d.item().busy);

  d.setting->setConnectionOnlyMode(true);
  d.item().click();
  EXPECT_TRUE(d.item().busy);
  d.item().click();
  EXPECT_EQ(d.item().menuPopUps, 4);
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
  d.item().click(); // connected, and cannot be the output
  EXPECT_EQ(d.item().menuPopUps, 5);

  d.setting->setConnectionOnlyMode(false);
  d.sim.shortcuts.setShortcut(d.setting->shortCutKey(), "Ctrl+Alt+K");
  d.sim.globalKeys.press("Ctrl+Alt+K");
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_TRUE(log.contains("User pressed shortcut for Keyboard."));
  d.sim.world.removeDevice(d.address);
  EXPECT_EQ(d.setting->toggleConnection(), ConnectionOutcome::noDevice);
}

// The menu's first entry does what the click would, and disconnects in
// connect-only mode too; where no menu can be placed, a middle click opens
// the device's settings.
TEST(DeviceStatusItem, TheMenuOffersTheActionForTheState) {
  test::SimulatedDevice d;
  d.item().choose("Connect");
  EXPECT_EQ(d.item().openMenu().at(0), "Connecting…");
  d.sim.loop.advance(2);
  d.setting->setConnectionOnlyMode(true);
  d.item().choose("Disconnect");
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->disconnectCalls(), 1);

  d.sim.statusBar.canPopUpMenus = false;
  d.item().click(StatusItemClick::Button::middle);
  EXPECT_EQ(d.sim.windows.preferencesShown, 1);
  EXPECT_EQ(d.item().menuPopUps, 0);
}

} // namespace lb
