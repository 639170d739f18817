#include "core/Tunables.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

TEST(Tunables, ReadOnceKeysKeepTheirFirstValueOthersFollowAndDefaultsComeFromTheTable) {
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  EXPECT_DOUBLE_EQ(tunables(tunable::ConnectionWaitInterval).count(), 1.0);

  defaults.setValue("ConnectionWaitInterval", 5.0);
  defaults.setValue("TrySyncConnectFirst", false);
  EXPECT_DOUBLE_EQ(tunables(tunable::ConnectionWaitInterval).count(), 1.0); // until the next start
  EXPECT_FALSE(tunables(tunable::TrySyncConnectFirst));                     // read at each attempt
  EXPECT_DOUBLE_EQ(Tunables(defaults)(tunable::ConnectionWaitInterval).count(), 5.0);

  // Defaults come from the table, the registration or the caller.
  EXPECT_DOUBLE_EQ(tunables(tunable::StatusItemLength, 27.0), 27.0);
  // Registered keys answer through the settings themselves.
  EXPECT_EQ(defaults.object("BatteryInfoStalenessInterval"), SettingsValue(600.0));
  EXPECT_FALSE(defaults.boolValue("BatteryInfoUseHelper", true)); // off on Linux
  defaults.setValue("BatteryInfoUseHelper", true);
  EXPECT_TRUE(tunables(tunable::BatteryInfoUseHelper));
}

// A number out of its tunable's range (0 s would spin a core, NaN is no
// time at all) is ignored once said.
TEST(Tunables, OutOfRangeValuesAreIgnored) {
  test::CapturedLog log;
  InMemorySettingsStore store(SettingsValue::Dictionary{{"ConnectionUpdateTimerInterval", 0.0}});
  UserDefaults defaults(store, UserDefaults::argumentDomain({"-NotAudioOutputFraction", "nan"}));
  Tunables tunables(defaults);
  EXPECT_EQ(tunables(tunable::ConnectionUpdateTimerInterval), Seconds(1.0));
  EXPECT_DOUBLE_EQ(tunables(tunable::NotAudioOutputFraction), 0.5);
  EXPECT_DOUBLE_EQ(tunables(tunable::NotAudioOutputFraction), 0.5);
  EXPECT_EQ(log.messages().size(), 2u);
}

} // namespace lb
