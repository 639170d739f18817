#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

using Dictionary = SettingsValue::Dictionary;

// An empty or failing helper leaves the registry and properties to answer.
TEST(BatteryInfo, TheHelperIsAskedOnlyOnceTheProgramHasRunTenMinutes) {
  test::SimulatedDevice d({{"BatteryInfoUseHelper", true}}, 4, "Headset");
  d.sim.batterySources.helper = [](const std::string&) {
    return SettingsValue(Dictionary{{"BatteryPercentSingle", 42}});
  };
  d.sim.loop.advance(599);
  EXPECT_FALSE(d.sim.batteryInfo.shouldUseHelper());
  d.sim.loop.advance(2);
  EXPECT_TRUE(d.sim.batteryInfo.shouldUseHelper());
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 42}}));

  d.sim.batterySources.helper = [](const std::string&) { return SettingsValue(Dictionary{}); };
  d.device->setBatteryProperty("batteryPercentSingle", 77);
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 77}}));
  d.sim.batterySources.helper = nullptr;
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 77}}));
}

TEST(BatteryInfo, TheRegistryEntryMustBeIncludedMatchingAndNonZero) {
  test::SimulatedDevice d({}, 4, "Headset");
  auto& sources = d.sim.batterySources;
  const auto upower = [&](const std::string& address, Dictionary battery, const std::string& name) {
    battery.insert({{"DeviceAddress", address}, {"Product", "Headset"}});
    return BatterySources::RegistryEntry{name, "/org/freedesktop/UPower/devices/headset", battery};
  };
  const std::string included = "org.freedesktop.UPower.Device";
  sources.entries = {
      upower(d.address, {{"BatteryPercentSingle", 0}}, included),         // all zero: passed over
      upower("another", {{"BatteryPercentSingle", 50}}, included),        // someone else's
      upower(d.address, {{"BatteryPercentSingle", 60}}, "SomeOtherKind"), // not included
      upower(d.address, {{"BatteryPercentSingle", 70}, {"BatteryPercentCase", "full"}}, included),
  };
  EXPECT_EQ(d.sim.batteryInfo.info(*d.device), (Dictionary{{"BatteryPercentSingle", 70}}));

  Dictionary bySerial{{"SerialNumber", d.address}, {"BatteryPercentLeft", 30}};
  sources.entries = {{included, "/serial", bySerial}};
  EXPECT_EQ(d.sim.batteryInfo.registryInfo(*d.device), (Dictionary{{"BatteryPercentLeft", 30}}));

  d.sim.defaults.setValue("BatteryInfoRegistryExcludedNames", SettingsValue::Array{included});
  EXPECT_TRUE(d.sim.batteryInfo.registryInfo(*d.device).empty()); // in both lists: excluded
  d.sim.defaults.removeValue("BatteryInfoRegistryExcludedNames");
  d.sim.defaults.setValue("BatteryInfoRegistryIncludedNames", SettingsValue::Array{});
  d.device->setBatteryProperty("batteryPercentSingle", 0);    // zero: left out
  d.device->setBatteryProperty("headsetBattery", "charging"); // not a number: kept
  EXPECT_EQ(d.sim.batteryInfo.info(*d.device), (Dictionary{{"HeadsetBattery", "charging"}}));
  sources.registryFails = true;
  EXPECT_EQ(d.sim.batteryInfo.info(*d.device), (Dictionary{{"HeadsetBattery", "charging"}}));
}

// Print mode never throws, even where its output is closed.
TEST(BatteryInfo, TheLastAnswerStandsInWhenEverySourceIsSilentUnlessSwitchedOff) {
  for (bool disableCache : {false, true}) {
    test::SimulatedDevice d({{"BatteryInfoDisableCache", disableCache}}, 4, "Headset");
    d.device->setBatteryProperty("batteryPercentSingle", 64);
    EXPECT_EQ(d.sim.batteryInfo.fallbackInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 64}}));
    d.device->setBatteryProperty("batteryPercentSingle", std::nullopt);
    EXPECT_EQ(d.sim.batteryInfo.fallbackInfo(*d.device),
              (disableCache ? Dictionary{} : Dictionary{{"BatteryPercentSingle", 64}}));
    EXPECT_NO_THROW(d.sim.batteryInfo.mainPrintBatteryInfo(
        d.sim.bluetooth, d.address, [](const Dictionary&) { throw std::runtime_error("standard output is closed"); }));
  }
}

} // namespace lb
