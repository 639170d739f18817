#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

using Told = std::vector<std::string>;

// Earbuds that report their levels; each reading is taken as the program
// takes it, when the last one has gone stale.
struct Buds : test::SimulatedDevice {
  Buds() : SimulatedDevice({}, 4, "Lantern Buds") {
    sim.world.setConnected(address, true);
    sim.loop.advance(1);
  }
  // The summaries shown since the last call, "!" marking a critical one.
  Told read(const std::map<std::string, int>& levels) {
    for (const auto& [key, level] : levels) device->setBatteryProperty(key, level);
    sim.loop.advance(61);
    Told told;
    for (; seen < sim.notifications.shown.size(); ++seen) {
      const auto& shown = sim.notifications.shown[seen].notification;
      told.push_back((shown.critical ? "!" : "") + shown.summary);
    }
    return told;
  }
  std::size_t seen = 0;
};

} // namespace

TEST(LowBatteryWarnings, OnceAtEachLevelUntilTheBatteryRecoversAndEachBudForItself) {
  Buds d;
  const std::pair<int, Told> readings[] = {{25, {}},
                                           {19, {"Lantern Buds: battery at 19 %"}},
                                           {21, {}},
                                           {19, {}}, // 19, 21, 19 warns once
                                           {5, {"!Lantern Buds: battery at 5 %"}},
                                           {3, {}},
                                           {24, {}}, // not yet 5 above the warning level
                                           {18, {}},
                                           {25, {}},
                                           {18, {"Lantern Buds: battery at 18 %"}}};
  for (const auto& [level, told] : readings) EXPECT_EQ(d.read({{"batteryPercentSingle", level}}), told) << level;
  EXPECT_EQ(d.sim.notifications.shown[2].replacing, 1u); // each warning replaces the one before

  d.device->setBatteryProperty("batteryPercentSingle", std::nullopt);
  EXPECT_EQ(d.read({{"batteryPercentLeft", 15}, {"batteryPercentRight", 70}}), Told{"Lantern Buds: left bud at 15 %"});
  // A bud in its case reads 0, which the sources drop: no reading at all.
  EXPECT_EQ(d.read({{"batteryPercentLeft", 0}, {"batteryPercentRight", 4}}), Told{});
  EXPECT_EQ(d.read({{"batteryPercentLeft", 14}, {"batteryPercentRight", 4}}), Told{"!Lantern Buds: right bud at 4 %"});

  d.sim.world.setConnected(d.address, false);
  d.sim.loop.advance(1);
  EXPECT_EQ(d.read({{"batteryPercentLeft", 3}}), Told{}); // nothing while disconnected
}

// What the user was told survives a restart for an hour; a removed device's
// state goes with it.
TEST(LowBatteryWarnings, ARestartWithinTheHourTellsNothingNew) {
  Buds d;
  EXPECT_EQ(d.read({{"batteryPercentSingle", 15}}).size(), 1u);
  const LowBatteryWarnings::Device buds{"00:11:22:33:44:55", "Lantern Buds", {}};
  const auto afterRestart = [&d, &buds](double later) {
    LowBatteryWarnings restarted(d.sim.notifications, d.sim.warningState, d.sim.desktopSettings, d.sim.tunables,
                                 d.sim.loop);
    d.sim.loop.advance(later);
    restarted.levelsRead(buds, {BatteryType::Kind::single, 15});
    return d.read({}).size();
  };
  EXPECT_EQ(afterRestart(1800), 0u);
  EXPECT_EQ(afterRestart(1900), 1u);

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
