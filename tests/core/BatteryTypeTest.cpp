#include "core/BatteryType.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lb {

using Kind = BatteryType::Kind;

TEST(BatteryType, ReadsTheFirstKeyThatApplies) {
  EXPECT_EQ(BatteryType::from({{"BatteryPercent", 0.855}}), (BatteryType{Kind::fraction, 85}));
  EXPECT_EQ(BatteryType::from({{"BatteryPercentCombined", 85.9}}), (BatteryType{Kind::single, 85}));
  EXPECT_EQ(BatteryType::from({{"BatteryPercentSingle", 60}, {"BatteryPercentLeft", 1}, {"BatteryPercentRight", 2}}),
            (BatteryType{Kind::single, 60}));
  EXPECT_EQ(BatteryType::from({{"BatteryPercentLeft", 0}, {"BatteryPercentRight", 70}}),
            (BatteryType{Kind::leftRight, 0, 70}));
  EXPECT_EQ(BatteryType::from({{"BatteryPercentLeft", 40}, {"HeadsetBattery", 55.0}}), (BatteryType{Kind::single, 55}));
  EXPECT_FALSE(BatteryType::from({{"HeadsetBattery", "85"}, {"BatteryPercentCase", 90}}));
  EXPECT_FALSE(BatteryType::from({{"BatteryPercentCombined", std::nan("")}}));
  EXPECT_FALSE(BatteryType::from({}));
}

} // namespace lb
