#include "core/SettingKeys.h"
#include "core/UserDefaults.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

// The command line wins for that run only, its text read as the wanted
// type; each bad value is reported once.
TEST(UserDefaults, TheCommandLineWinsForThatRunOnlyReadAsTheWantedType) {
  // A whole number stored for a number means what it says.
  InMemorySettingsStore store({{"A", true}, {"Wait", 2}});
  UserDefaults defaults(store, UserDefaults::argumentDomain({"lanternbud",
                                                             "--demo",
                                                             "-A",
                                                             "NO",
                                                             "-B",
                                                             "1",
                                                             "-C",
                                                             "true",
                                                             "-Tries",
                                                             "-3",
                                                             "-Names",
                                                             R"(["x", "y"])",
                                                             "-Bad",
                                                             "perhaps",
                                                             "-Half",
                                                             "12abc",
                                                             "-Wait",
                                                             "0.5",
                                                             "-NotAudioOutputFraction",
                                                             "nan",
                                                             "-Dangling"}));
  EXPECT_FALSE(defaults.boolValue("A", true));
  EXPECT_TRUE(defaults.boolValue("B", false));
  EXPECT_TRUE(defaults.boolValue("C", false));
  EXPECT_EQ(defaults.integerValue("Tries", 5), -3);
  EXPECT_DOUBLE_EQ(defaults.doubleValue("Wait", 1), 0.5);
  EXPECT_EQ(defaults.stringArrayValue("Names", {}), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(defaults.object("Names"), SettingsValue(SettingsValue::Array{"x", "y"}));
  EXPECT_EQ(defaults.object("A"), SettingsValue("NO"));

  test::CapturedLog log;
  EXPECT_TRUE(defaults.boolValue("Bad", true));
  EXPECT_FALSE(defaults.boolValue("Bad", false));
  EXPECT_EQ(defaults.integerValue("Half", 7), 7);
  EXPECT_DOUBLE_EQ(defaults.doubleValue("NotAudioOutputFraction", 0.5), 0.5); // NaN is no fraction
  EXPECT_EQ(log.messages().size(), 3u);

  UserDefaults nextRun(store);
  EXPECT_TRUE(nextRun.boolValue("A", false));
  EXPECT_DOUBLE_EQ(nextRun.doubleValue("Wait", 1), 2.0);
  EXPECT_EQ(store.value("A"), SettingsValue(true)); // nothing written back
}

// A stored value that does not fit its key is said once, gives the default
// and stays in the file for the user to mend.
TEST(UserDefaults, AStoredValueThatDoesNotFitItsKeyIsSaidAndGivesTheDefault) {
  const SettingsValue::Dictionary wrong{{settingKey::launchAtLogin, "yes"},
                                        {"LogConnect", "YES"},
                                        {"MissingAudioDeviceTries", 2.5},
                                        {"ConnectionUpdateTimerInterval", 0.0},
                                        {"TrayIconColor", "#zzzzzz"},
                                        {"shortcutDictForDevice1", "Ctrl+Alt+H"},
                                        {"HeadsetBattery", "85"}};
  InMemorySettingsStore store(wrong);
  UserDefaults defaults(store);
  defaults.registerDefaults({{settingKey::launchAtLogin, false}});
  test::CapturedLog log;
  for (int twice = 0; twice < 2; ++twice) {
    EXPECT_FALSE(defaults.boolValue(settingKey::launchAtLogin, true));
    EXPECT_TRUE(defaults.boolValue("LogConnect", true));
    EXPECT_EQ(defaults.integerValue("MissingAudioDeviceTries", 5), 5);
    EXPECT_DOUBLE_EQ(defaults.doubleValue("ConnectionUpdateTimerInterval", 1), 1.0); // it would spin a core
    EXPECT_EQ(defaults.stringValue("TrayIconColor", ""), "");
    EXPECT_EQ(defaults.object("shortcutDictForDevice1"), std::nullopt);
    EXPECT_EQ(defaults.integerValue("HeadsetBattery", -1), -1); // no key of ours: silently absent
  }
  EXPECT_EQ(log.messages().size(), 6u);
  for (const auto& [key, value] : wrong) EXPECT_EQ(store.value(key), value) << key;
}

} // namespace lb
