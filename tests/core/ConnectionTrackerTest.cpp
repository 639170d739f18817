#include "tests/core/SimulatedHeadset.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

using test::SimulatedHeadset;

// The first look at a device connected at start only records the state:
// no script, no audio change. The timer lets its device go.
TEST(ConnectionTracker, TheSlowTimerFollowsItsIntervalAndItsFirstLookOnlyRecordsTheState) {
  InMemorySettingsStore store({{"ConnectionUpdateTimerInterval", 5.0}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("aa", "Mouse", 5);
  sim.world.setConnected("aa", true);
  const auto before = sim.loop.activeTimers().size();
  auto setting = DeviceSetting::make(sim.services, {{"device", "aa"}});
  ASSERT_EQ(sim.loop.activeTimers().size(), before + 2); // the slow timer and the battery watch
  sim.loop.advance(4.9);
  EXPECT_FALSE(setting->isConnected());
  sim.loop.advance(0.1);
  EXPECT_EQ(setting->isConnected(), true);
  EXPECT_FALSE(setting->lastConnectionScriptRun());
  std::weak_ptr<DeviceSetting> watch = setting;
  setting.reset();
  EXPECT_TRUE(watch.expired());
  EXPECT_EQ(sim.loop.activeTimers().size(), before);
}

// The sound server makes the speaker after the link and does not switch to
// it; the connection the user started does, the moment the speaker is
// listed. No timer looks in between: the audio system's change is the event.
// Past the window, the fixer about to close the link finds it and sets it.
TEST(ConnectionTracker, TheSpeakerOfAManualConnectionBecomesTheOutputTheMomentItIsListed) {
  for (bool earlier : {false, true}) {
    for (double delay : {0.0, 0.3, 2.0, 6.0, 8.5}) {
      SCOPED_TRACE(testing::Message() << "delay " << delay << (earlier ? " after an earlier connection" : ""));
      test::CapturedLog log({"LogAudioOutput", "LogConnect", "LogIsConnected", "LogScript"});
      SimulatedHeadset h({.delay = delay}, {{"ConnectionUpdateUseTimer", false}});
      if (earlier) {
        h.connectEarlier();
        ASSERT_EQ(h.setting->isPotentialAudioOutput(), true);
      }
      h.setting->toggleConnection();
      for (int step = 0; step < 400 && !h.audio.speaker; ++step) h.sim.loop.advance(0.05);
      ASSERT_TRUE(h.audio.speaker);
      EXPECT_TRUE(h.outputIsHeadset() || delay > 8); // in the same moment, within the window
      h.sim.loop.advance(20);
      EXPECT_TRUE(h.outputIsHeadset());
      EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
      EXPECT_EQ(h.device->disconnectCalls(), 0);
      EXPECT_EQ(
          log.contains(
              "Setting sound output device because connection was manually initiated: <DeviceSetting: WH Headset>"),
          delay < 8);
    }
  }
}

// Only a missing audio device starts the output fixer; a script's
// disconnect means it.
TEST(ConnectionTracker, AClickOnAConnectedHeadsetThatIsNotTheOutputSetsIt) {
  SimulatedHeadset h({.delay = 0});
  h.sim.world.setConnected(h.address, true);
  h.sim.loop.advance(1);
  EXPECT_EQ(h.setting->toggleConnection(), ConnectionOutcome::settingOutput);
  h.sim.loop.advance(1);
  EXPECT_TRUE(h.outputIsHeadset());
  for (auto outcome : {SimAudioSystem::SetOutcome::refused, SimAudioSystem::SetOutcome::anotherStaysCurrent}) {
    h.sim.audio.setOutcome(outcome);
    h.setting->setDefaultAudioOutput();
    EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
  }
  h.sim.audio.removeDevice(*h.audio.speaker);
  h.setting->setDefaultAudioOutput();
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::waitingToDisconnect(4));
  EXPECT_EQ(h.setting->disconnect(), ConnectionOutcome::disconnecting);

  SimulatedHeadset off({.delay = 0}, {{"EnableAudioOutput", false}});
  off.sim.world.setConnected(off.address, true);
  off.sim.loop.advance(1);
  EXPECT_EQ(off.setting->isPotentialAudioOutput(), std::nullopt);
  off.setting->toggleConnection();
  off.sim.loop.advance(1);
  EXPECT_EQ(off.setting->isConnected(), false); // disconnected, as any device
}

// An output the system already switched to gets no set call.
TEST(ConnectionTracker, TheInputIsRestoredForDevicesThatKeepIt) {
  for (bool keep : {false, true}) {
    SimulatedHeadset h({.delay = 0, .systemSwitches = true, .hasMicrophone = true});
    h.setting->setKeepDefaultAudioInput(keep);
    h.setting->toggleConnection();
    h.sim.loop.advance(15);
    EXPECT_TRUE(h.outputIsHeadset());
    EXPECT_EQ(h.sim.audio.setCalls(AudioDirection::output), 0);
    EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
    EXPECT_EQ(h.sim.audio.defaultDevice(AudioDirection::input), keep ? h.microphone : *h.audio.microphone);
  }
}

} // namespace lb
