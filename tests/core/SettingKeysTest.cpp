#include "core/SettingKeys.h"

#include <gtest/gtest.h>

namespace lb {

// Setting one out of range is refused; an unknown key is told from its
// nearest known one.
TEST(SettingKeys, ValuesOutOfRangeAreProblemsAndUnknownKeysHaveNeighbours) {
  EXPECT_TRUE(SettingKeys::problem("ConnectionUpdateTimerInterval", SettingsValue(0.0)));
  EXPECT_TRUE(SettingKeys::problem("MissingAudioDeviceTries", SettingsValue(1e308)));
  EXPECT_FALSE(SettingKeys::problem("ConnectionUpdateTimerInterval", SettingsValue(std::int64_t{2})));
  EXPECT_EQ(SettingKeys::problem("LogConnect", SettingsValue("on")), "LogConnect takes true or false, not \"on\".");
  EXPECT_FALSE(SettingKeys::problem("Frobnicate", SettingsValue(1)));

  EXPECT_TRUE(SettingKeys::isKnown("shortcutDictForDevice12"));
  EXPECT_FALSE(SettingKeys::isKnown("shortcutDictForDevice"));
  EXPECT_FALSE(SettingKeys::isKnown("LogConect"));
  EXPECT_EQ(SettingKeys::nearest("LogConect"), "LogConnect");
  EXPECT_EQ(SettingKeys::nearest("launchatlogin"), "launchAtLogin");
  EXPECT_EQ(SettingKeys::nearest("Frobnicate"), std::nullopt);
}

} // namespace lb
