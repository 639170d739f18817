#include "sim/SimHeadsetAudio.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

// A headset added through the registry, with built-in speakers and a
// microphone that are the defaults to begin with.
struct Headset : test::SimulatedDevice {
  explicit Headset(SimHeadsetAudio::Options options, SettingsValue::Dictionary settings = {})
      : SimulatedDevice(std::move(settings), 4, "WH Headset"),
        speakers(sim.audio.addDevice({"Built-in Speakers", "alsa_output.pci", true, false})),
        microphone(sim.audio.addDevice({"Built-in Microphone", "alsa_input.pci", false, false})),
        audio(sim.world, sim.audio, sim.loop, address, "WH Headset", options) {
    sim.audio.makeDefault(AudioDirection::output, speakers);
    sim.audio.makeDefault(AudioDirection::input, microphone);
  }

  bool outputIsHeadset() const {
    return audio.speaker && sim.audio.defaultDevice(AudioDirection::output) == audio.speaker;
  }

  AudioDeviceID speakers;
  AudioDeviceID microphone;
  SimHeadsetAudio audio;
};

} // namespace

// The sound server makes the speaker after the link and does not switch to
// it; the connection the user started does, the moment the speaker is
// listed. No timer looks in between: the audio system's change is the event.
TEST(AudioReaction, ASpeakerThatAppearsLateBecomesTheOutputOfAManualConnection) {
  for (bool earlier : {false, true}) {
    for (double delay : {0.3, 2.0, 6.0}) {
      SCOPED_TRACE(testing::Message() << "delay " << delay << (earlier ? " after an earlier connection" : ""));
      test::CapturedLog log({"LogAudioOutput"});
      Headset h({.delay = delay}, {{"ConnectionUpdateUseTimer", false}});
      if (earlier) {
        h.sim.world.setConnected(h.address, true);
        h.sim.loop.advance(delay + 1);
        ASSERT_EQ(h.setting->isPotentialAudioOutput(), true);
        EXPECT_FALSE(h.outputIsHeadset()); // a connection of its own is not switched
        h.sim.world.setConnected(h.address, false);
        h.sim.loop.advance(11);
      }
      h.setting->toggleConnection();
      for (int step = 0; step < 400 && !h.audio.speaker; ++step) h.sim.loop.advance(0.05);
      ASSERT_TRUE(h.audio.speaker);
      EXPECT_TRUE(h.outputIsHeadset()); // in the same moment
      h.sim.loop.advance(20);
      EXPECT_EQ(h.setting->isAudioOutput(), true);
      EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
      EXPECT_EQ(h.device->disconnectCalls(), 0);
      EXPECT_TRUE(log.contains(
          "Setting sound output device because connection was manually initiated: <DeviceSetting: WH Headset>"));
    }
  }
}

TEST(AudioReaction, AManualConnectionMakesThePresentSpeakerTheOutput) {
  test::CapturedLog log({"LogAudioOutput"});
  // No timer may look between the connection and its speaker being listed:
  // only the click's own update sees the connection.
  Headset h({.delay = 0}, {{"ConnectionUpdateUseTimer", false}});
  // Known as a potential output from an earlier connection.
  h.sim.world.setConnected(h.address, true);
  h.sim.loop.advance(1);
  ASSERT_EQ(h.setting->isPotentialAudioOutput(), true);
  h.sim.world.setConnected(h.address, false);
  h.sim.loop.advance(11); // past the earlier connection's fast timer

  h.setting->toggleConnection();
  h.sim.loop.advance(2);
  EXPECT_TRUE(log.contains(
      "Setting sound output device because connection was manually initiated: <DeviceSetting: WH Headset>"));
  EXPECT_TRUE(h.outputIsHeadset());
  EXPECT_EQ(h.setting->isAudioOutput(), true);
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
}

TEST(AudioReaction, AHeadsetTheSystemAlreadySwitchedToGetsNoSetCall) {
  test::CapturedLog log({"LogAudioOutput"});
  Headset h({.delay = 0, .systemSwitches = true});
  h.setting->toggleConnection();
  h.sim.loop.advance(2);
  EXPECT_TRUE(h.outputIsHeadset());
  EXPECT_EQ(h.sim.audio.setCalls(AudioDirection::output), 0);
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
  EXPECT_TRUE(log.contains("No need to set sound output device because it was already set automatically"));
}

// The window has ended; the fixer, about to close the link, finds the
// speaker listed and sets it instead.
TEST(AudioReaction, ASpeakerJustAfterTheWindowIsSetByTheFixerWithoutReconnecting) {
  test::CapturedLog log({"LogOutputFixer"});
  Headset h({.delay = 8.5}, {{"ConnectionUpdateUseTimer", false}});
  h.setting->toggleConnection();
  h.sim.loop.advance(15);
  EXPECT_TRUE(h.outputIsHeadset());
  EXPECT_EQ(h.device->disconnectCalls(), 0);
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::ok());
  EXPECT_TRUE(log.contains("Setting audio output again because its device is listed now: <DeviceSetting: WH Headset>"));
}

TEST(AudioReaction, ASpeakerThatNeverAppearsSendsTheFixerThroughItsCycles) {
  test::CapturedLog log;
  Headset h({.delay = 0});
  h.sim.world.setConnected(h.address, true); // an earlier connection showed it as an output
  h.sim.loop.advance(1);
  h.sim.world.setConnected(h.address, false);
  h.sim.loop.advance(1);
  h.audio.options.hasOutput = false;

  // Each cycle waits out the window for the speaker, then the delay before
  // closing, and reconnects.
  h.setting->toggleConnection();
  h.sim.loop.advance(6 * (8 + 1 + 2));
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::gaveUp());
  EXPECT_EQ(h.device->disconnectCalls(), 5);
  EXPECT_EQ(h.device->connectCalls().size(), 6u); // the click and one reopening a cycle
  EXPECT_TRUE(log.contains("Gave up trying to fix audio output: <DeviceSetting: WH Headset>"));
  EXPECT_TRUE(h.sim.alerts.shown.empty());
  EXPECT_EQ(h.setting->isConnected(), true);
}

TEST(AudioReaction, AClickOnAConnectedHeadsetThatIsNotTheOutputSetsIt) {
  test::CapturedLog log({"LogConnect"});
  Headset h({.delay = 0});
  h.sim.world.setConnected(h.address, true);
  h.sim.loop.advance(1);
  ASSERT_EQ(h.setting->isAudioOutput(), false);
  EXPECT_EQ(h.setting->toggleConnection(), ConnectionOutcome::settingOutput);
  h.sim.loop.advance(1);
  EXPECT_TRUE(log.contains("Already connected but trying to set audio output: <DeviceSetting: WH Headset>"));
  EXPECT_TRUE(h.outputIsHeadset());
  EXPECT_EQ(h.setting->isConnected(), true);
  EXPECT_EQ(h.device->disconnectCalls(), 0);
  // A script's disconnect means it.
  h.sim.audio.makeDefault(AudioDirection::output, h.speakers);
  h.sim.loop.advance(1);
  EXPECT_EQ(h.setting->disconnect(), ConnectionOutcome::disconnecting);
  h.sim.loop.advance(1);
  EXPECT_EQ(h.device->disconnectCalls(), 1);

  Headset off({.delay = 0}, {{"EnableAudioOutput", false}});
  off.sim.world.setConnected(off.address, true);
  off.sim.loop.advance(1);
  EXPECT_EQ(off.setting->isPotentialAudioOutput(), std::nullopt);
  off.setting->toggleConnection();
  off.sim.loop.advance(1);
  EXPECT_EQ(off.setting->isConnected(), false); // disconnected, as any device
  EXPECT_EQ(off.setting->isAudioOutput(), false);
}

TEST(AudioReaction, AMouseNeverBecomesAPotentialOutput) {
  test::CapturedLog log({"LogAudioOutput"});
  test::SimulatedDevice d({}, 5, "MX Master");
  d.sim.audio.addDevice({"MX Master", "odd", true, false});
  d.setting->toggleConnection();
  d.sim.loop.advance(2);
  EXPECT_EQ(d.setting->isPotentialAudioOutput(), false);
  EXPECT_NE(d.setting->isAudioOutput(), true); // false since it was first seen disconnected
  EXPECT_EQ(d.setting->outputFixer().state(), OutputFixer::State::ok());
  EXPECT_TRUE(log.contains(
      "No need to set sound output device because it was already set automatically: <DeviceSetting: MX Master>"));
}

TEST(AudioReaction, TheInputIsRestoredForDevicesThatKeepIt) {
  Headset keeps({.delay = 0, .systemSwitches = true, .hasMicrophone = true});
  keeps.setting->setKeepDefaultAudioInput(true);
  keeps.setting->toggleConnection();
  keeps.sim.loop.advance(15);
  EXPECT_TRUE(keeps.outputIsHeadset());
  EXPECT_EQ(keeps.sim.audio.defaultDevice(AudioDirection::input), keeps.microphone);

  Headset takes({.delay = 0, .systemSwitches = true, .hasMicrophone = true});
  takes.setting->toggleConnection();
  takes.sim.loop.advance(15);
  EXPECT_EQ(takes.sim.audio.defaultDevice(AudioDirection::input), takes.audio.microphone);
}

TEST(AudioReaction, ConnectScriptRunsAreSpacedByTheInterval) {
  test::CapturedLog log({"LogScript"});
  test::SimulatedDevice d({}, 4, "WH Headset");
  auto runs = [&] {
    int count = 0;
    for (const auto& message : log.messages()) count += message.starts_with("Connect script because audio output set:");
    return count;
  };
  d.setting->reactToSettingAudioOutput();
  d.sim.loop.advance(3);
  d.setting->reactToSettingAudioOutput();
  EXPECT_EQ(runs(), 1);
  EXPECT_TRUE(
      log.contains("Skipping connect script because audio output set because just ran: <DeviceSetting: WH Headset>"));
  d.sim.loop.advance(1); // 4 s after the run: not less than the interval
  d.setting->reactToSettingAudioOutput();
  EXPECT_EQ(runs(), 2);
}

TEST(AudioReaction, OnlyAMissingAudioDeviceStartsTheFixer) {
  test::CapturedLog log;
  Headset h({.delay = 0});
  h.sim.world.setConnected(h.address, true);
  h.sim.loop.advance(1);
  h.sim.audio.setOutcome(SimAudioSystem::SetOutcome::refused);
  h.setting->setDefaultAudioOutput();
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::initial());
  h.sim.audio.setOutcome(SimAudioSystem::SetOutcome::anotherStaysCurrent);
  h.setting->setDefaultAudioOutput();
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::initial());

  h.sim.audio.removeDevice(*h.audio.speaker);
  h.setting->setDefaultAudioOutput();
  EXPECT_EQ(h.setting->outputFixer().state(), OutputFixer::State::waitingToDisconnect(4));
}

} // namespace lb

namespace lb {

TEST(TrayPicture, DimWhenNotTheOutputWithAGaugeOnlyForAKnownLevelAndUntouchedWhileSpinning) {
  Headset h({.delay = 0});
  h.setting->setShowBatteryLevel(true);
  h.sim.world.setConnected(h.address, true); // by itself: the output stays where it was
  h.sim.loop.advance(1);
  ASSERT_EQ(h.setting->isAudioOutput(), false);
  auto shown = [](Headset& headset) { return SimImages::describe(headset.item().image()); };
  EXPECT_EQ(shown(h), "headphones-fill@0.5"); // asked for a gauge, but no level is known
  EXPECT_EQ(h.item().toolTip, "WH Headset - Connected (Not Sound Output).\nBattery Level: Unknown.");

  Headset withLevel({.delay = 0});
  withLevel.setting->setShowBatteryLevel(true);
  withLevel.device->setBatteryProperty("batteryPercentSingle", 77);
  withLevel.sim.world.setConnected(withLevel.address, true);
  withLevel.sim.loop.advance(1);
  EXPECT_EQ(shown(withLevel), "headphones-fill@0.5+battery-8@0.5");

  auto offered = h.item().openMenu();
  offered.resize(2);
  EXPECT_EQ(offered, (std::vector<std::string>{"Make Sound Output", "Disconnect"}));
  h.item().choose("Make Sound Output"); // as the click would
  h.sim.loop.advance(1);
  EXPECT_EQ(h.setting->isAudioOutput(), true);
  EXPECT_EQ(shown(h), "headphones-fill@1");

  h.setting->startProgress();
  const int redraws = h.item().redraws;
  h.sim.audio.makeDefault(AudioDirection::output, h.speakers);
  h.sim.loop.advance(1);
  EXPECT_EQ(h.setting->isAudioOutput(), false);
  EXPECT_EQ(h.item().redraws, redraws); // the spinner stays until it stops
  h.setting->stopProgress();
  EXPECT_EQ(shown(h), "headphones-fill@0.5");
}

TEST(TrayPicture, WhileTheOutputIsFixedTheDimmedPictureOrTheRefreshSymbol) {
  for (bool symbol : {false, true}) {
    Headset h({.hasOutput = false}, {{"ChangeIconWhileFixingAudioOutput", symbol}});
    h.sim.world.setConnected(h.address, true);
    h.sim.loop.advance(1);
    h.setting->outputFixer().didFailToSetAudioOutput();
    ASSERT_TRUE(h.setting->outputFixer().isRetrying());
    h.setting->updateButtonImage();
    EXPECT_EQ(SimImages::describe(h.item().image()), symbol ? "refresh-freestanding" : "headphones-fill@0.5");
    EXPECT_EQ(h.setting->statusString(), "WH Headset - Fixing Sound Output");
  }
}

} // namespace lb
