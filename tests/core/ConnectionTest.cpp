#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

using Calls = std::vector<std::optional<std::uint16_t>>;

TEST(Connection, AClickConnectsADisconnectedDevice) {
  test::CapturedLog log({"LogConnect"});
  test::SimulatedDevice d;
  ASSERT_EQ(d.setting->isConnected(), false);
  d.setting->toggleConnection();
  EXPECT_TRUE(d.item().busy);
  d.sim.loop.advance(0.5); // the worker is paging the device
  EXPECT_TRUE(d.setting->isManuallyInitiatedConnection());
  d.sim.loop.advance(0.6);
  EXPECT_EQ(d.setting->isConnected(), true);
  EXPECT_FALSE(d.setting->isManuallyInitiatedConnection()); // consumed by the reaction
  EXPECT_FALSE(d.item().busy);
  EXPECT_EQ(d.device->connectCalls(), Calls{std::nullopt}); // one synchronous attempt
  EXPECT_TRUE(log.contains("Begin sync connecting to <DeviceSetting: Keyboard> initial"));
  EXPECT_TRUE(log.contains("End sync connecting to"));
  EXPECT_TRUE(log.contains("Was not already connected: <DeviceSetting: Keyboard> so will try script and input"));
  EXPECT_TRUE(d.setting->lastConnectionScriptRun());
}

TEST(Connection, AClickDisconnectsAConnectedDeviceUnlessConnectOnly) {
  test::CapturedLog log({"LogConnect"});
  test::SimulatedDevice d;
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1.0);
  d.setting->setConnectionOnlyMode(true);
  d.setting->toggleConnection();
  d.sim.loop.advance(2.0);
  EXPECT_EQ(d.setting->isConnected(), true);
  EXPECT_EQ(d.device->disconnectCalls(), 0);
  EXPECT_FALSE(d.item().busy);
  EXPECT_TRUE(log.contains("Tried to disconnect from <DeviceSetting: Keyboard> but in connection-only mode"));

  d.setting->setConnectionOnlyMode(false);
  d.setting->toggleConnection();
  d.sim.loop.advance(1.0);
  EXPECT_EQ(d.setting->isConnected(), false);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_TRUE(log.contains("Device disconnected: <DeviceSetting: Keyboard>"));
}

TEST(Connection, AClickAndAShortcutEnterTheSameToggle) {
  test::CapturedLog log({"LogHotKey"});
  using Button = StatusItemClick::Button;
  test::SimulatedDevice d;
  d.item().click(Button::left);
  EXPECT_TRUE(d.item().busy);
  d.item().click(Button::left); // the spinner takes it and shows the menu
  EXPECT_EQ(d.item().menuPopUps, 1);
  d.sim.loop.advance(2);
  EXPECT_EQ(d.setting->isConnected(), true);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);

  d.sim.shortcuts.setShortcut(d.setting->shortCutKey(), "Ctrl+Alt+K");
  d.sim.globalKeys.press("Ctrl+Alt+K");
  d.sim.loop.advance(2);
  EXPECT_EQ(d.setting->isConnected(), false);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_TRUE(log.contains("User pressed shortcut for Keyboard."));
}

TEST(Connection, ControlRightAndMiddleClicksOpenTheMenuAsDoConnectOnlyClicksThatWouldDisconnect) {
  using Button = StatusItemClick::Button;
  test::SimulatedDevice d;
  d.item().click(Button::left, true);
  d.item().click(Button::right);
  d.item().click(Button::middle);
  EXPECT_EQ(d.item().menuPopUps, 3);
  EXPECT_FALSE(d.item().busy);

  d.setting->setConnectionOnlyMode(true);
  d.item().click(); // disconnected: connects
  d.sim.loop.advance(2);
  ASSERT_EQ(d.setting->isConnected(), true);
  d.item().click(); // connected, and cannot be the output: the menu
  EXPECT_EQ(d.item().menuPopUps, 4);
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->disconnectCalls(), 0);

  d.sim.world.removeDevice(d.address);
  d.setting->toggleConnection();
  EXPECT_FALSE(d.item().busy);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
}

// The menu's first entry does what the click would, and disconnects in
// connect-only mode too; where no menu can be placed, a middle click opens
// the device's settings.
TEST(Connection, TheMenuOffersTheActionForTheState) {
  test::SimulatedDevice d;
  EXPECT_EQ(d.item().identity, "lanternbud-001122334455");
  EXPECT_EQ(d.item().openMenu().at(0), "Connect");
  d.item().choose("Connect");
  EXPECT_EQ(d.item().openMenu().at(0), "Connecting…");
  d.item().choose("Connecting…"); // a line of text
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
  d.setting->setConnectionOnlyMode(true);
  EXPECT_EQ(d.item().openMenu().at(0), "Disconnect");
  d.item().choose("Disconnect");
  d.sim.loop.advance(2);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_EQ(d.setting->isConnected(), false);

  d.sim.statusBar.canPopUpMenus = false;
  d.item().click(StatusItemClick::Button::middle);
  EXPECT_EQ(d.sim.windows.preferencesShown, 1);
  EXPECT_EQ(d.item().menuPopUps, 0);
}

TEST(Connection, AFailedFirstAttemptAndASuccessfulRetryShowNoDialog) {
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::inTurn({sim::pageTimesOut(), sim::succeedsAfter(2)}));
  d.setting->toggleConnection();
  d.sim.loop.advance(30);
  EXPECT_EQ(d.device->connectCalls(), (Calls{std::nullopt, 20000}));
  EXPECT_EQ(d.setting->isConnected(), true);
  EXPECT_TRUE(d.sim.alerts.shown.empty());
}

// The demo's speaker: a device that fails once it has connected before.
TEST(Connection, AFailurePastTheRetryAfterASuccessShowsTheDialog) {
  test::SimulatedDevice d;
  const auto pagesInVain = sim::failsAfter(sim::pageTimeoutResult(), 3);
  d.device->setConnectBehaviour(sim::cycles({sim::succeedsAfter(1), pagesInVain, pagesInVain}));
  d.setting->toggleConnection();
  d.sim.loop.advance(5);
  d.setting->toggleConnection();
  d.sim.loop.advance(5);
  ASSERT_EQ(d.setting->isConnected(), false);
  d.setting->toggleConnection();
  d.sim.loop.advance(30);
  EXPECT_EQ(d.device->connectCalls().size(), 3u);
  ASSERT_EQ(d.sim.alerts.shown.size(), 1u);
  EXPECT_EQ(d.sim.alerts.shown[0].buttons, (std::vector<std::string>{"OK", "Help"}));
}

// BlueZ may answer "already connected" for a link it has not reported yet.
TEST(Connection, EveryEndOfAnAttemptStopsTheSpinner) {
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(
      sim::failsAfter(IOReturn::make(IOReturn::Code::kBluetoothHCIErrorACLConnectionAlreadyExists), 1));
  d.setting->toggleConnection();
  EXPECT_TRUE(d.item().busy);
  d.sim.loop.advance(5);
  EXPECT_FALSE(d.item().busy);
  EXPECT_EQ(d.setting->isConnected(), false);
}

TEST(Connection, WithoutTheSynchronousFirstTryTheFirstAttemptPagesLonger) {
  test::SimulatedDevice d({{"TrySyncConnectFirst", false}});
  d.device->setConnectBehaviour(sim::inTurn({sim::pageTimesOut(), sim::succeedsAfter(2)}));
  d.setting->toggleConnection();
  d.sim.loop.advance(30);
  EXPECT_EQ(d.device->connectCalls(), (Calls{10000, 20000}));
}

TEST(Connection, ARetryThatFindsTheConnectionThereIsNoError) {
  test::CapturedLog log;
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::failsAfter(sim::alreadyConnectedResult(), 1));
  d.setting->toggleConnection();
  d.sim.loop.advance(5);
  EXPECT_TRUE(log.contains("It looks like <DeviceSetting: Keyboard> is already connected: IOReturn"));
  EXPECT_TRUE(d.sim.alerts.shown.empty());
}

TEST(Connection, ATimeoutIsWaitedOutThenJudgedSpuriousOrReal) {
  test::CapturedLog log;
  test::SimulatedDevice spurious({{"ConnectionWaitInterval", 2.0}});
  spurious.device->setConnectBehaviour(sim::connectsLateAfter(sim::timeoutResult(), 1, 0.5));
  spurious.setting->toggleConnection();
  spurious.sim.loop.advance(30);
  EXPECT_TRUE(log.contains("; will wait and see if this ends up being spurious."));
  EXPECT_TRUE(log.contains("connecting to <DeviceSetting: Keyboard> was spurious"));
  EXPECT_TRUE(spurious.sim.alerts.shown.empty());
  EXPECT_EQ(spurious.setting->isConnected(), true);

  test::SimulatedDevice real;
  real.device->setConnectBehaviour(sim::failsAfter(sim::timeoutResult(), 1));
  real.setting->toggleConnection();
  real.sim.loop.advance(2.9); // both attempts failed at 2 s; the judgement comes at 3 s
  EXPECT_TRUE(real.sim.alerts.shown.empty());
  EXPECT_TRUE(real.item().busy);
  real.sim.loop.advance(0.1);
  EXPECT_TRUE(log.contains("was real"));
  ASSERT_EQ(real.sim.alerts.shown.size(), 1u);
  EXPECT_EQ(real.sim.alerts.shown[0].message, "Your computer could not connect to “Keyboard”.");
  EXPECT_EQ(real.sim.alerts.shown[0].informativeText, "The Bluetooth connection timed out.");
  EXPECT_FALSE(real.item().busy);

  test::SimulatedDevice older;
  older.sim.operatingSystem.spuriousTimeouts = false;
  older.device->setConnectBehaviour(sim::failsAfter(sim::timeoutResult(), 1));
  older.setting->toggleConnection();
  older.sim.loop.advance(2.0);
  EXPECT_EQ(older.sim.alerts.shown.size(), 1u); // at once
}

TEST(Connection, TheDialogWordsTheErrorAndLeadsToHelp) {
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::failsAfter(sim::offlineResult(), 0.1));
  d.sim.alerts.answer = 1; // Help
  d.setting->toggleConnection();
  d.sim.loop.advance(1);
  ASSERT_EQ(d.sim.alerts.shown.size(), 1u);
  EXPECT_EQ(d.sim.alerts.shown[0].informativeText,
            "Please make sure that Bluetooth is turned on in your desktop’s Bluetooth settings.");
  EXPECT_EQ(d.sim.alerts.shown[0].buttons, (std::vector<std::string>{"OK", "Help"}));
  EXPECT_EQ(d.sim.alerts.helpPagesOpened, std::vector<std::string>{"not-connecting"});

  d.sim.operatingSystem.settingsWording = false;
  EXPECT_EQ(d.setting->connectionErrorAlert(sim::offlineResult()).informativeText,
            "Please make sure that Bluetooth is On in your desktop’s Bluetooth settings.");
  auto other = IOReturn::make(IOReturn::Subsystem::sub_iokit_bluetooth, 5, "org.bluez.Error.AuthenticationFailed");
  // BlueZ's own words; the internal code stays in the log.
  EXPECT_EQ(d.setting->connectionErrorAlert(other).informativeText,
            "Bluetooth reported error org.bluez.Error.AuthenticationFailed.");
  EXPECT_EQ(
      d.setting->connectionErrorAlert(IOReturn::make(IOReturn::Subsystem::sub_iokit_bluetooth, 5)).informativeText,
      "Bluetooth reported error " + pxrDescription(IOReturn::make(IOReturn::Subsystem::sub_iokit_bluetooth, 5)) + ".");
}

TEST(Connection, TwoConnectionsWithinTenSecondsShareTheFirstDrop) {
  test::SimulatedDevice d({{"ConnectionUpdateUseTimer", false}});
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.runDue();
  d.setting->updateConnectionState(ConnectionUpdateReason::toggle());
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.runDue();
  EXPECT_EQ(d.setting->isConnected(), false);

  d.sim.world.setConnected(d.address, true); // t = 0
  d.sim.loop.advance(0.1);
  EXPECT_TRUE(d.setting->hasFastTimer());
  d.sim.loop.advance(2.9);
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(1.0);
  d.sim.world.setConnected(d.address, true); // t = 4
  d.sim.loop.advance(0.5);
  EXPECT_TRUE(d.setting->hasFastTimer());
  d.sim.loop.advance(5.6); // t = 10.1: the first connection's drop
  EXPECT_FALSE(d.setting->hasFastTimer());
}

TEST(Connection, TheFastTimerFindsAChangeWithinATenthOfASecond) {
  test::SimulatedDevice d({{"DeviceSettingDisableDisconnectObservation", true}});
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(0.2);
  ASSERT_EQ(d.setting->isConnected(), true);
  d.sim.world.setConnected(d.address, false); // no notification reaches the device
  d.sim.world.setConnected(d.address, true);
  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(0.1);
  EXPECT_EQ(d.setting->isConnected(), false);
}

} // namespace lb
