#include "tests/core/SimulatedHeadset.h"

#include <gtest/gtest.h>

namespace lb {

using State = OutputFixer::State;

// Each cycle waits out the window for the speaker, then the delay before
// closing, and reconnects; the reports of one disconnection reopen once.
TEST(OutputFixer, ASpeakerThatNeverAppearsSendsItThroughItsCyclesUntilItGivesUp) {
  test::SimulatedHeadset h({.delay = 0});
  h.connectEarlier();
  h.audio.options.hasOutput = false;
  h.setting->toggleConnection();
  h.sim.loop.advance(6 * (8 + 1 + 2));
  EXPECT_EQ(h.setting->outputFixer().state(), State::gaveUp());
  EXPECT_EQ(h.device->disconnectCalls(), 5);
  EXPECT_EQ(h.device->connectCalls().size(), 6u); // the click and one reopening a cycle
  EXPECT_EQ(h.setting->isConnected(), true);
  h.setting->outputFixer().didFailToSetAudioOutput();
  EXPECT_EQ(h.setting->outputFixer().state(), State::gaveUp());
}

// Nothing says this device could be an output, so nothing is closed and
// the repair is over; without a sound server none begins.
TEST(OutputFixer, TheDelayedCloseIsSkippedUnlessTheOutputIsStillWrong) {
  test::SimulatedDevice d({}, 4, "Headset");
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  d.setting->outputFixer().didFailToSetAudioOutput();
  d.sim.loop.advance(0.99);
  EXPECT_TRUE(d.setting->outputFixer().isRetrying());
  d.sim.loop.advance(0.01);
  EXPECT_EQ(d.setting->outputFixer().state(), State::ok());

  d.sim.audio.stopServer();
  d.setting->outputFixer().didFailToSetAudioOutput();
  EXPECT_EQ(d.setting->outputFixer().state(), State::ok());
}

TEST(OutputFixer, AManualDisconnectDuringARepairIsAnOrdinaryDisconnection) {
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
  EXPECT_EQ(fixer.state(), State::ok());
  EXPECT_EQ(d.device->connectCalls().size(), reopenings); // not reopened
}

TEST(OutputFixer, AFailedReopeningEndsTheRepairWithoutADialog) {
  test::SimulatedDevice d({}, 4, "Headset");
  d.device->setConnectBehaviour(sim::failsAfter(sim::offlineResult(), 0.5));
  auto& fixer = d.setting->outputFixer();
  fixer.didFailToSetAudioOutput();
  EXPECT_TRUE(fixer.didDisconnect()); // reopens on a worker, which fails twice
  d.sim.loop.advance(5);
  EXPECT_EQ(fixer.state(), State::ok());
  EXPECT_TRUE(d.sim.alerts.shown.empty());
}

} // namespace lb
