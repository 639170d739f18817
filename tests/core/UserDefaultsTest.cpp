#include "core/UserDefaults.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

TEST(UserDefaults, TheCommandLineWinsForThatRunOnly) {
  auto arguments = UserDefaults::argumentDomain(
      {"lanternbud", "--demo", "-LogConnect", "YES", "-ConnectionWaitInterval", "0.5", "-Dangling"});
  EXPECT_EQ(arguments, (UserDefaults::Arguments{{"LogConnect", "YES"}, {"ConnectionWaitInterval", "0.5"}}));
  // A whole number stored for a number means what it says.
  InMemorySettingsStore store({{"LogConnect", false}, {"ConnectionWaitInterval", 2}});
  UserDefaults run(store, arguments);
  EXPECT_TRUE(run.boolValue("LogConnect", false));
  EXPECT_DOUBLE_EQ(run.doubleValue("ConnectionWaitInterval", 1), 0.5);

  UserDefaults nextRun(store);
  EXPECT_FALSE(nextRun.boolValue("LogConnect", true));
  EXPECT_DOUBLE_EQ(nextRun.doubleValue("ConnectionWaitInterval", 1), 2.0);
  EXPECT_EQ(store.value("LogConnect"), SettingsValue(false)); // nothing written back
}

// Each bad value is reported once.
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
  EXPECT_EQ(log.messages().size(), 2u);
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
  for (const auto& [key, value] : wrong) EXPECT_EQ(store.value(key), value) << key;
}

} // namespace lb
