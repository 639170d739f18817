#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

using Calls = std::vector<std::optional<std::uint16_t>>;

// A keyboard's sound output is set by the system, if at all.
TEST(ConnectionControl, AClickConnectsAndAnotherDisconnectsUnlessConnectOnly) {
  test::CapturedLog log({"LogConnect", "LogAudioOutput"});
  test::SimulatedDevice d;
  d.setting->toggleConnection();
  d.sim.loop.advance(1.1);
  EXPECT_EQ(d.setting->isConnected(), true);
  EXPECT_FALSE(d.setting->isManuallyInitiatedConnection()); // consumed by the reaction
  EXPECT_EQ(d.device->connectCalls(), Calls{std::nullopt}); // one synchronous attempt
  EXPECT_EQ(d.sim.audio.setCalls(AudioDirection::output), 0);
  EXPECT_TRUE(log.contains(
      "No need to set sound output device because it was already set automatically: <DeviceSetting: Keyboard>"));

  for (bool connectOnly : {true, false}) {
    d.setting->setConnectionOnlyMode(connectOnly);
    d.setting->toggleConnection();
    d.sim.loop.advance(2.0);
    EXPECT_EQ(d.device->disconnectCalls(), connectOnly ? 0 : 1);
  }
  EXPECT_EQ(d.setting->isConnected(), false);
}

// The first attempt is synchronous, or else pages for 10000 slots; the
// retry pages for 20000; a successful retry shows no dialog. BlueZ may
// answer "already connected" for a link it has not reported yet: no error
// either, and the spinner stops.
TEST(ConnectionControl, AFailedFirstAttemptIsRetried) {
  test::CapturedLog log;
  for (bool syncFirst : {true, false}) {
    test::SimulatedDevice d({{"TrySyncConnectFirst", syncFirst}});
    d.device->setConnectBehaviour(sim::inTurn({sim::pageTimesOut(), sim::succeedsAfter(2)}));
    d.setting->toggleConnection();
    d.sim.loop.advance(30);
    EXPECT_EQ(d.device->connectCalls(), (Calls{syncFirst ? std::nullopt : std::optional<std::uint16_t>(10000), 20000}));
    d.device->setConnectBehaviour(sim::failsAfter(sim::alreadyConnectedResult(), 1));
    d.sim.world.setConnected(d.address, false);
    d.setting->toggleConnection();
    d.sim.loop.advance(5);
    EXPECT_FALSE(d.item().busy);
    EXPECT_TRUE(d.sim.alerts.shown.empty());
  }
  EXPECT_TRUE(log.contains("It looks like <DeviceSetting: Keyboard> is already connected: IOReturn"));
}

TEST(ConnectionControl, ATimeoutIsWaitedOutThenJudgedSpuriousOrReal) {
  test::SimulatedDevice spurious({{"ConnectionWaitInterval", 2.0}});
  spurious.device->setConnectBehaviour(sim::connectsLateAfter(sim::timeoutResult(), 1, 0.5));
  spurious.setting->toggleConnection();
  spurious.sim.loop.advance(30);
  EXPECT_TRUE(spurious.sim.alerts.shown.empty());
  EXPECT_EQ(spurious.setting->isConnected(), true);

  // Both attempts fail at 2 s; the judgement comes at 3 s, or at once where
  // time-outs are never spurious.
  for (bool spuriousTimeouts : {true, false}) {
    test::SimulatedDevice real;
    real.sim.operatingSystem.spuriousTimeouts = spuriousTimeouts;
    real.device->setConnectBehaviour(sim::failsAfter(sim::timeoutResult(), 1));
    real.setting->toggleConnection();
    real.sim.loop.advance(2.9);
    EXPECT_EQ(real.item().busy, spuriousTimeouts);
    real.sim.loop.advance(0.1);
    ASSERT_EQ(real.sim.alerts.shown.size(), 1u);
    EXPECT_EQ(real.sim.alerts.shown[0].informativeText, "The Bluetooth connection timed out.");
    EXPECT_FALSE(real.item().busy);
  }
}

TEST(ConnectionControl, TheDialogWordsTheErrorAndLeadsToHelp) {
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::failsAfter(sim::offlineResult(), 0.1));
  d.sim.alerts.answer = 1; // Help
  d.setting->toggleConnection();
  d.sim.loop.advance(1);
  ASSERT_EQ(d.sim.alerts.shown.size(), 1u);
  EXPECT_EQ(d.sim.alerts.shown[0].informativeText,
            "Please make sure that Bluetooth is turned on in your desktop’s Bluetooth settings.");
  EXPECT_EQ(d.sim.alerts.helpPagesOpened, std::vector<std::string>{"not-connecting"});

  d.sim.operatingSystem.settingsWording = false;
  EXPECT_EQ(d.setting->connectionErrorAlert(sim::offlineResult()).informativeText,
            "Please make sure that Bluetooth is On in your desktop’s Bluetooth settings.");
  // BlueZ's own words; without them, the code.
  auto other = IOReturn::make(IOReturn::Subsystem::sub_iokit_bluetooth, 5, "org.bluez.Error.AuthenticationFailed");
  EXPECT_EQ(d.setting->connectionErrorAlert(other).informativeText,
            "Bluetooth reported error org.bluez.Error.AuthenticationFailed.");
  EXPECT_EQ(d.setting->connectionErrorAlert(IOReturn{0x12345, ""}).informativeText,
            "Bluetooth reported error IOReturn 74565 (0, 4, 9029).");
}

} // namespace lb
