#include "core/Tunables.h"
#include "sim/InMemorySettingsStore.h"

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

} // namespace lb
