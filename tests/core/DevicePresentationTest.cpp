#include "tests/core/SimulatedHeadset.h"

#include <gtest/gtest.h>

namespace lb {

using Dictionary = SettingsValue::Dictionary;

TEST(DevicePresentation, DimWhenNotTheOutputWithAGaugeOnlyForAKnownLevel) {
  test::SimulatedHeadset h({.delay = 0});
  h.setting->setShowBatteryLevel(true);
  h.sim.world.setConnected(h.address, true); // by itself: the output stays where it was
  h.sim.loop.advance(1);
  auto shown = [&h] { return SimImages::describe(h.item().image()); };
  EXPECT_EQ(shown(), "headphones-fill@0.5"); // asked for a gauge, but no level is known
  EXPECT_EQ(h.item().toolTip, "WH Headset - Connected (Not Sound Output).\nBattery Level: Unknown.");
  h.device->setBatteryProperty("batteryPercentSingle", 77);
  h.sim.deviceInfoCache.removeAll();
  h.setting->updateButtonImage();
  EXPECT_EQ(shown(), "headphones-fill@0.5+battery-8@0.5");
  EXPECT_EQ(h.item().toolTip, "WH Headset - Connected (Not Sound Output).\nBattery Level: 77%.");

  h.setting->makeSoundOutput(); // as the menu's first entry does
  h.sim.loop.advance(1);
  EXPECT_EQ(h.setting->isAudioOutput(), true);
  EXPECT_EQ(shown(), "headphones-fill@1+battery-8@1");
  // At the warning level, the gauge warns.
  for (auto [level, gauge] : {std::pair{21, "battery-2"}, {20, "battery-2!"}}) {
    h.device->setBatteryProperty("batteryPercentSingle", level);
    h.sim.deviceInfoCache.removeAll();
    h.setting->updateButtonImage();
    EXPECT_EQ(shown(), std::string("headphones-fill@1+") + gauge + "@1");
  }
}

TEST(DevicePresentation, WhileTheOutputIsFixedTheDimmedPictureOrTheRefreshSymbol) {
  for (bool symbol : {false, true}) {
    test::SimulatedHeadset h({.hasOutput = false}, {{"ChangeIconWhileFixingAudioOutput", symbol}});
    h.sim.world.setConnected(h.address, true);
    h.sim.loop.advance(1);
    h.setting->outputFixer().didFailToSetAudioOutput();
    h.setting->updateButtonImage();
    EXPECT_EQ(SimImages::describe(h.item().image()), symbol ? "refresh-freestanding" : "headphones-fill@0.5");
    EXPECT_EQ(h.setting->statusString(), "WH Headset - Fixing Sound Output");
  }
}

// Of two earbuds the lower level that is not zero; as the helper tool
// reports them, zeros included. An unpaired device has no texts.
TEST(DevicePresentation, BatteryTextsForEarbuds) {
  test::SimulatedDevice d({}, 4, "Headphones");
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  for (auto [left, right, level, text] :
       {std::tuple{40, 70, 40, "L: 40% R: 70%"}, {0, 70, 70, "R: 70%"}, {0, 0, 0, ""}}) {
    d.sim.deviceInfoCache.setValue(static_cast<const DeviceHandle*>(d.setting.get()),
                                   Dictionary{{"BatteryPercentLeft", left}, {"BatteryPercentRight", right}});
    EXPECT_EQ(d.setting->batteryLevel(), level);
    EXPECT_EQ(d.setting->batteryLevelString(), std::string("Battery Level: ") + text);
  }
  d.sim.world.removeDevice(d.address);
  EXPECT_EQ(d.setting->statusString(), std::nullopt);
  EXPECT_EQ(d.setting->toolTipString(), std::nullopt);
}

} // namespace lb
