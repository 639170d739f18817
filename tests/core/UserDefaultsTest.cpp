#include "core/SettingKeys.h"
#include "core/Tunables.h"
#include "core/UserDefaults.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

TEST(UserDefaults, CommandLinePairsBecomeTheArgumentDomain) {
  auto arguments = UserDefaults::argumentDomain(
      {"lanternbud", "--demo", "-LogConnect", "YES", "-ConnectionWaitInterval", "-1", "-Dangling"});
  EXPECT_EQ(arguments, (UserDefaults::Arguments{{"LogConnect", "YES"}, {"ConnectionWaitInterval", "-1"}}));
}

TEST(UserDefaults, TheCommandLineWinsForThatRunOnly) {
  InMemorySettingsStore store({{"LogConnect", false}, {"ConnectionWaitInterval", 2.0}});
  UserDefaults run(store, {{"LogConnect", "yes"}, {"ConnectionWaitInterval", "0.5"}});
  EXPECT_TRUE(run.boolValue("LogConnect", false));
  EXPECT_DOUBLE_EQ(run.doubleValue("ConnectionWaitInterval", 1), 0.5);

  UserDefaults nextRun(store);
  EXPECT_FALSE(nextRun.boolValue("LogConnect", true));
  EXPECT_DOUBLE_EQ(nextRun.doubleValue("ConnectionWaitInterval", 1), 2.0);
  EXPECT_EQ(store.value("LogConnect"), SettingsValue(false)); // nothing written back
}

TEST(UserDefaults, CommandLineTextIsReadAsTheWantedType) {
  InMemorySettingsStore store;
  UserDefaults defaults(store, {{"A", "NO"},
                                {"B", "1"},
                                {"C", "true"},
                                {"Tries", "-3"},
                                {"Names", R"(["x", "y"])"},
                                {"Bad", "perhaps"},
                                {"Half", "12abc"}});
  EXPECT_FALSE(defaults.boolValue("A", true));
  EXPECT_TRUE(defaults.boolValue("B", false));
  EXPECT_TRUE(defaults.boolValue("C", false));
  EXPECT_EQ(defaults.integerValue("Tries", 5), -3);
  EXPECT_EQ(defaults.stringArrayValue("Names", {}), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(defaults.object("Names"), SettingsValue(SettingsValue::Array{"x", "y"}));
  EXPECT_EQ(defaults.object("A"), SettingsValue("NO"));

  test::CapturedLog log;
  EXPECT_TRUE(defaults.boolValue("Bad", true));
  EXPECT_FALSE(defaults.boolValue("Bad", false));
  EXPECT_EQ(defaults.integerValue("Half", 7), 7);
  EXPECT_EQ(log.messages().size(), 2u); // each bad value is reported once
  EXPECT_TRUE(log.contains("-Bad"));
}

// A stored value that does not fit its key is said once, gives the default
// and stays in the file for the user to mend.
TEST(UserDefaults, AStoredValueThatDoesNotFitItsKeyIsSaidAndGivesTheDefault) {
  const SettingsValue::Dictionary wrong{{"launchAtLogin", "yes"},
                                        {"LogConnect", "YES"},
                                        {"MissingAudioDeviceTries", 2.5},
                                        {"TrayIconColor", "#zzzzzz"},
                                        {"shortcutDictForDevice1", "Ctrl+Alt+H"},
                                        {"HeadsetBattery", "85"}};
  InMemorySettingsStore store(wrong);
  UserDefaults defaults(store);
  defaults.registerDefaults({{"launchAtLogin", false}});
  test::CapturedLog log;
  for (int twice = 0; twice < 2; ++twice) {
    EXPECT_FALSE(defaults.boolValue("launchAtLogin", true));
    EXPECT_TRUE(defaults.boolValue("LogConnect", true));
    EXPECT_EQ(defaults.integerValue("MissingAudioDeviceTries", 5), 5);
    EXPECT_EQ(defaults.stringValue("TrayIconColor", ""), "");
    EXPECT_EQ(defaults.object("shortcutDictForDevice1"), std::nullopt);
    EXPECT_EQ(defaults.integerValue("HeadsetBattery", -1), -1); // no key of ours: silently absent
  }
  EXPECT_EQ(log.messages().size(), 5u);
  EXPECT_TRUE(log.contains("Ignoring the stored setting: MissingAudioDeviceTries takes a whole number"));
  EXPECT_TRUE(log.contains("lanternbud-ctl config set TrayIconColor"));
  for (const auto& [key, value] : wrong) EXPECT_EQ(store.value(key), value) << key;
}

TEST(Tunables, ReadOnceKeysKeepTheirFirstValueAndOthersFollowTheSettings) {
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  EXPECT_DOUBLE_EQ(tunables(tunable::ConnectionWaitInterval).count(), 1.0);
  EXPECT_TRUE(tunables(tunable::TrySyncConnectFirst));

  defaults.setValue("ConnectionWaitInterval", 5.0);
  defaults.setValue("TrySyncConnectFirst", false);
  EXPECT_DOUBLE_EQ(tunables(tunable::ConnectionWaitInterval).count(), 1.0); // until the next start
  EXPECT_FALSE(tunables(tunable::TrySyncConnectFirst));                     // read at each attempt

  Tunables nextStart(defaults);
  EXPECT_DOUBLE_EQ(nextStart(tunable::ConnectionWaitInterval).count(), 5.0);
}

TEST(Tunables, DefaultsComeFromTheTableTheRegistrationOrTheCaller) {
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  EXPECT_EQ(tunables(tunable::MissingAudioDeviceTries), 5);
  EXPECT_EQ(tunables(tunable::BatteryInfoRegistryIncludedNames),
            std::vector<std::string>{"org.freedesktop.UPower.Device"});
  EXPECT_DOUBLE_EQ(tunables(tunable::StatusItemLength, 27.0), 27.0);
  // Registered keys answer through the settings themselves.
  EXPECT_EQ(defaults.object("BatteryInfoStalenessInterval"), SettingsValue(600.0));
  EXPECT_FALSE(defaults.boolValue("BatteryInfoUseHelper", true)); // off on Linux
  defaults.setValue("BatteryInfoUseHelper", true);
  EXPECT_TRUE(tunables(tunable::BatteryInfoUseHelper));
}

// A number out of its tunable's range (0 s would spin a core, NaN is no
// time at all) is ignored once said; setting one is refused; an unknown key
// is told from its nearest known one.
TEST(Tunables, OutOfRangeValuesAreIgnoredAndUnknownKeysHaveNeighbours) {
  test::CapturedLog log;
  InMemorySettingsStore store(SettingsValue::Dictionary{{"ConnectionUpdateTimerInterval", 0.0}});
  UserDefaults defaults(store, UserDefaults::argumentDomain({"-NotAudioOutputFraction", "nan"}));
  Tunables tunables(defaults);
  EXPECT_EQ(tunables(tunable::ConnectionUpdateTimerInterval), Seconds(1.0));
  EXPECT_DOUBLE_EQ(tunables(tunable::NotAudioOutputFraction), 0.5);
  EXPECT_DOUBLE_EQ(tunables(tunable::NotAudioOutputFraction), 0.5);
  EXPECT_EQ(log.messages().size(), 2u);
  EXPECT_TRUE(log.contains("ConnectionUpdateTimerInterval takes a number from 0.05"));

  EXPECT_TRUE(SettingKeys::problem("ConnectionUpdateTimerInterval", SettingsValue(0.0)));
  EXPECT_TRUE(SettingKeys::problem("MissingAudioDeviceTries", SettingsValue(1e308)));
  EXPECT_FALSE(SettingKeys::problem("ConnectionUpdateTimerInterval", SettingsValue(std::int64_t{2})));
  EXPECT_EQ(SettingKeys::problem("LogConnect", SettingsValue("on")), "LogConnect takes true or false, not \"on\".");
  EXPECT_FALSE(SettingKeys::problem("TrayIconColor", SettingsValue("#30303a")));
  EXPECT_FALSE(SettingKeys::problem("Frobnicate", SettingsValue(1)));

  EXPECT_TRUE(SettingKeys::isKnown("LogConnect"));
  EXPECT_TRUE(SettingKeys::isKnown("ManualConnectionAudioOutputWindow"));
  EXPECT_TRUE(SettingKeys::isKnown("shortcutDictForDevice12"));
  EXPECT_FALSE(SettingKeys::isKnown("shortcutDictForDevice"));
  EXPECT_FALSE(SettingKeys::isKnown("LogConect"));
  EXPECT_EQ(SettingKeys::nearest("LogConect"), "LogConnect");
  EXPECT_EQ(SettingKeys::nearest("launchatlogin"), "launchAtLogin");
  EXPECT_EQ(SettingKeys::nearest("Frobnicate"), std::nullopt);
}

} // namespace lb
