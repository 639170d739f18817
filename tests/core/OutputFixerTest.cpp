#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

using State = OutputFixer::State;

TEST(OutputFixer, WalksThroughItsTriesAndGivesUp) {
  test::CapturedLog log({"LogOutputFixer"});
  test::SimulatedDevice d({}, 4, "Headset");
  auto& fixer = d.setting->outputFixer();
  EXPECT_EQ(fixer.state(), State::initial());
  EXPECT_FALSE(fixer.didDisconnect());

  std::vector<State> seen;
  for (int failure = 1; failure <= 6; ++failure) {
    fixer.didFailToSetAudioOutput();
    seen.push_back(fixer.state());
    if (fixer.state().kind == State::Kind::waitingToDisconnect) {
      EXPECT_TRUE(fixer.isRetrying());
      EXPECT_TRUE(fixer.didDisconnect()); // the repair's own disconnection: reopen
      seen.push_back(fixer.state());
    }
  }
  EXPECT_EQ(seen, (std::vector<State>{State::waitingToDisconnect(4), State::waitingToReconnect(4),
                                      State::waitingToDisconnect(3), State::waitingToReconnect(3),
                                      State::waitingToDisconnect(2), State::waitingToReconnect(2),
                                      State::waitingToDisconnect(1), State::waitingToReconnect(1),
                                      State::waitingToDisconnect(0), State::waitingToReconnect(0), State::gaveUp()}));
  EXPECT_TRUE(log.contains("Gave up trying to fix audio output: <DeviceSetting: Headset>"));
  fixer.didFailToSetAudioOutput();
  EXPECT_TRUE(log.contains("Already exhausted tries to fix audio ouptut"));
  EXPECT_EQ(fixer.state(), State::gaveUp());

  // No time passed between the reports: the first reopening, still under
  // way, answers all of them.
  d.sim.loop.advance(30);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
  fixer.didDetectCorrectAudioOutput();
  EXPECT_EQ(fixer.state(), State::ok());
  EXPECT_TRUE(log.contains("Setting state to .ok because detected correct audio output <DeviceSetting: Headset>"));
}

TEST(OutputFixer, NoTriesLeftStillAllowsOneCycle) {
  test::CapturedLog log;
  test::SimulatedDevice d({{"MissingAudioDeviceTries", 0}}, 4, "Headset");
  auto& fixer = d.setting->outputFixer();
  fixer.didFailToSetAudioOutput();
  EXPECT_TRUE(fixer.didDisconnect());
  fixer.didFailToSetAudioOutput();
  EXPECT_EQ(fixer.state(), State::gaveUp());
}

TEST(OutputFixer, SwitchedOffItOnlyLogs) {
  test::CapturedLog log({"LogOutputFixer"});
  test::SimulatedDevice d({{"WorkAroundMissingAudioDevice", false}}, 4, "Headset");
  d.setting->outputFixer().didFailToSetAudioOutput();
  EXPECT_EQ(d.setting->outputFixer().state(), State::initial());
  EXPECT_TRUE(log.contains("Failed to set audio output with state initial <DeviceSetting: Headset>"));
}

TEST(OutputFixer, TheDelayedCloseIsSkippedUnlessTheOutputIsStillWrong) {
  test::CapturedLog log({"LogOutputFixer"});
  test::SimulatedDevice d({}, 4, "Headset");
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  d.setting->outputFixer().didFailToSetAudioOutput();
  d.sim.loop.advance(0.99);
  EXPECT_FALSE(log.contains("Skipping retry"));
  d.sim.loop.advance(0.01);
  // Nothing says this device could be an output, so nothing is closed, and
  // the repair is over.
  EXPECT_TRUE(log.contains("Setting state to .ok because audio output is now correct or cannot be known"));
  EXPECT_FALSE(d.setting->outputFixer().isRetrying());
  d.sim.loop.advance(5);
  EXPECT_EQ(d.device->disconnectCalls(), 0);

  // Without a sound server no repair begins.
  d.sim.audio.stopServer();
  d.setting->outputFixer().didFailToSetAudioOutput();
  EXPECT_EQ(d.setting->outputFixer().state(), State::ok());
  EXPECT_TRUE(log.contains("No sound server answers, so <DeviceSetting: Headset> stays connected"));
}

TEST(OutputFixer, AManualDisconnectDuringARepairIsAnOrdinaryDisconnection) {
  test::CapturedLog log({"LogConnect"});
  test::SimulatedDevice d({}, 4, "Headset");
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  auto& fixer = d.setting->outputFixer();
  fixer.didFailToSetAudioOutput();
  fixer.didDisconnect(); // as if the repair had closed and was reopening
  d.sim.loop.advance(5);
  ASSERT_EQ(fixer.state(), State::waitingToReconnect(4));
  auto reopenings = d.device->connectCalls().size();

  d.setting->toggleConnection(); // the user disconnects
  d.sim.loop.advance(2);
  EXPECT_EQ(d.setting->isConnected(), false);
  EXPECT_EQ(fixer.state(), State::ok());
  EXPECT_EQ(d.device->connectCalls().size(), reopenings); // not reopened
  EXPECT_TRUE(log.contains("Device disconnected: <DeviceSetting: Headset>"));
}

} // namespace lb

namespace lb {

TEST(OutputFixer, AFailedReopeningEndsTheRepairWithoutADialog) {
  test::CapturedLog log;
  test::SimulatedDevice d({}, 4, "Headset");
  d.device->setConnectBehaviour(sim::failsAfter(sim::offlineResult(), 0.5));
  auto& fixer = d.setting->outputFixer();
  fixer.didFailToSetAudioOutput();
  EXPECT_TRUE(fixer.didDisconnect()); // reopens on a worker, which fails twice
  d.sim.loop.advance(5);
  EXPECT_EQ(fixer.state(), State::ok());
  EXPECT_TRUE(d.sim.alerts.shown.empty());

  d.setting->toggleConnection(); // the same failure from a click is shown
  d.sim.loop.advance(5);
  EXPECT_EQ(d.sim.alerts.shown.size(), 1u);
}

} // namespace lb
