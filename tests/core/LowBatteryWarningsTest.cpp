#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

// Earbuds that report their levels; each reading is taken as the program
// takes it, when the last one has gone stale.
struct Buds : test::SimulatedDevice {
  Buds() : SimulatedDevice({}, 4, "Lantern Buds") {
    sim.world.setConnected(address, true);
    sim.loop.advance(1);
  }
  // The summaries shown since the last call, "!" marking a critical one.
  std::vector<std::string> read(std::map<std::string, int> levels) {
    for (const auto& [key, level] : levels) device->setBatteryProperty(key, level);
    sim.loop.advance(61);
    std::vector<std::string> told;
    for (auto i = seen; i < sim.notifications.shown.size(); ++i) {
      const auto& shown = sim.notifications.shown[i].notification;
      told.push_back((shown.critical ? "!" : "") + shown.summary);
    }
    seen = sim.notifications.shown.size();
    return told;
  }
  std::size_t seen = 0;
};

using Told = std::vector<std::string>;

} // namespace

TEST(LowBatteryWarnings, OnceAtEachLevelUntilTheBatteryRecovers) {
  Buds d;
  const std::string single = "batteryPercentSingle";
  EXPECT_EQ(d.read({{single, 25}}), Told{});
  EXPECT_EQ(d.read({{single, 19}}), Told{"Lantern Buds: battery at 19 %"});
  EXPECT_EQ(d.read({{single, 21}}), Told{});
  EXPECT_EQ(d.read({{single, 19}}), Told{}); // 19, 21, 19 warns once
  EXPECT_EQ(d.read({{single, 5}}), Told{"!Lantern Buds: battery at 5 %"});
  EXPECT_EQ(d.read({{single, 3}}), Told{});
  EXPECT_EQ(d.read({{single, 24}}), Told{}); // not yet the warning level plus 5
  EXPECT_EQ(d.read({{single, 18}}), Told{});
  EXPECT_EQ(d.read({{single, 25}}), Told{});
  EXPECT_EQ(d.read({{single, 18}}), Told{"Lantern Buds: battery at 18 %"});
  // Each warning replaced the one before it.
  const auto& shown = d.sim.notifications.shown;
  EXPECT_EQ(shown[0].replacing, 0u);
  EXPECT_EQ(shown[2].replacing, 1u);

  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(1);
  EXPECT_EQ(d.read({{single, 3}}), Told{}); // nothing while disconnected
}

TEST(LowBatteryWarnings, EachBudForItselfAndABudInItsCaseIsAbsent) {
  Buds d;
  EXPECT_EQ(d.read({{"batteryPercentLeft", 15}, {"batteryPercentRight", 70}}), Told{"Lantern Buds: left bud at 15 %"});
  // A bud in its case reads 0, which the sources drop: no reading at all.
  EXPECT_EQ(d.read({{"batteryPercentLeft", 0}, {"batteryPercentRight", 4}}), Told{});
  EXPECT_EQ(d.read({{"batteryPercentLeft", 14}, {"batteryPercentRight", 4}}), Told{"!Lantern Buds: right bud at 4 %"});
}

// What the user was told survives a restart for an hour; a removed device's
// state goes with it.
TEST(LowBatteryWarnings, ARestartWithinTheHourTellsNothingNew) {
  Buds d;
  EXPECT_EQ(d.read({{"batteryPercentSingle", 15}}).size(), 1u);
  const LowBatteryWarnings::Device buds{"00:11:22:33:44:55", "Lantern Buds", {}};
  const auto afterRestart = [&d, &buds](Seconds later) {
    LowBatteryWarnings restarted(d.sim.notifications, d.sim.warningState, d.sim.desktopSettings, d.sim.tunables,
                                 d.sim.loop);
    d.sim.loop.advance(later.count());
    const auto before = d.sim.notifications.shown.size();
    restarted.levelsRead(buds, {BatteryType::Kind::single, 15});
    return d.sim.notifications.shown.size() - before;
  };
  EXPECT_EQ(afterRestart(Seconds(1800)), 0u);
  EXPECT_EQ(afterRestart(Seconds(1900)), 1u);

  ASSERT_TRUE(d.sim.warningState.value(buds.address));
  ASSERT_TRUE(d.registry->remove(d.setting->deviceID()));
  EXPECT_FALSE(d.sim.warningState.value(buds.address));
}

// Where the desktop warns by itself, the switch is off until the user turns
// it on; with no notification service, the tool tip carries the warning.
TEST(LowBatteryWarnings, OffWhereTheDesktopWarnsAndInTheToolTipWithoutAService) {
  Buds d;
  d.sim.desktopSettings.warnsOfLowBatteryItself = true;
  d.sim.notifications.missing = "The name is not activatable";
  EXPECT_FALSE(d.setting->warnsOfLowBattery());
  EXPECT_EQ(d.read({{"batteryPercentSingle", 15}}), Told{});
  d.setting->setWarnsOfLowBattery(true);
  EXPECT_EQ(d.read({{"batteryPercentSingle", 4}}), Told{"!Lantern Buds: battery at 4 %"});
  d.setting->updateButtonImage();
  EXPECT_EQ(d.item().toolTip, "Lantern Buds - Connected.\nBattery Level: 4%.\nLantern Buds: battery at 4 %");
}

} // namespace lb
