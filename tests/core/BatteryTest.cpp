#include "core/BatteryType.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lb {

using Dictionary = SettingsValue::Dictionary;
using Kind = BatteryType::Kind;

namespace {

BatterySources::RegistryEntry upower(const std::string& address, Dictionary battery,
                                     const std::string& name = "org.freedesktop.UPower.Device") {
  Dictionary properties{{"DeviceAddress", address}, {"Product", "Headset"}};
  properties.insert(battery.begin(), battery.end());
  return {name, "/org/freedesktop/UPower/devices/headset", properties};
}

} // namespace

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
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 42}}));
  EXPECT_EQ(d.sim.batterySources.registryReads, 0);

  // An empty or failing helper leaves the registry and properties to answer.
  d.sim.batterySources.helper = [](const std::string&) { return SettingsValue(Dictionary{}); };
  d.device->setBatteryProperty("batteryPercentSingle", 77);
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 77}}));
  test::CapturedLog log;
  d.sim.batterySources.helper = nullptr;
  EXPECT_EQ(d.sim.batteryInfo.topLevelInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 77}}));
  EXPECT_TRUE(log.contains("Helper error for Headset no helper tool"));
}

TEST(BatteryInfo, TheRegistryEntryMustBeIncludedMatchingAndNonZero) {
  test::CapturedLog log;
  test::SimulatedDevice d({}, 4, "Headset");
  auto& sources = d.sim.batterySources;
  sources.entries = {
      upower(d.address, {{"BatteryPercentSingle", 0}}),                   // all zero: passed over
      upower("another", {{"BatteryPercentSingle", 50}}),                  // someone else's
      upower(d.address, {{"BatteryPercentSingle", 60}}, "SomeOtherKind"), // not included
      upower(d.address, {{"BatteryPercentSingle", 70}, {"BatteryPercentCase", "full"}}),
  };
  EXPECT_EQ(d.sim.batteryInfo.info(*d.device), (Dictionary{{"BatteryPercentSingle", 70}}));

  Dictionary bySerial{{"SerialNumber", d.address}, {"BatteryPercentLeft", 30}};
  sources.entries = {{"org.freedesktop.UPower.Device", "/serial", bySerial}};
  EXPECT_EQ(d.sim.batteryInfo.registryInfo(*d.device), (Dictionary{{"BatteryPercentLeft", 30}}));

  d.sim.defaults.setValue("BatteryInfoRegistryExcludedNames", SettingsValue::Array{"org.freedesktop.UPower.Device"});
  EXPECT_TRUE(d.sim.batteryInfo.registryInfo(*d.device).empty()); // in both lists: excluded
  d.sim.defaults.removeValue("BatteryInfoRegistryExcludedNames");
  d.sim.defaults.setValue("BatteryInfoRegistryIncludedNames", SettingsValue::Array{});
  d.device->setBatteryProperty("batteryPercentSingle", 0);    // zero: left out
  d.device->setBatteryProperty("headsetBattery", "charging"); // not a number: kept
  EXPECT_EQ(d.sim.batteryInfo.info(*d.device), (Dictionary{{"HeadsetBattery", "charging"}}));

  sources.registryFails = true;
  d.sim.batteryInfo.info(*d.device);
  EXPECT_TRUE(log.contains("Registry error for Headset the registry cannot be walked"));
}

TEST(BatteryInfo, TheLastAnswerStandsInWhenEverySourceIsSilent) {
  test::CapturedLog log({"LogBatteryInfo"});
  test::SimulatedDevice d({}, 4, "Headset");
  d.device->setBatteryProperty("batteryPercentSingle", 64);
  EXPECT_EQ(d.sim.batteryInfo.fallbackInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 64}}));
  d.device->setBatteryProperty("batteryPercentSingle", std::nullopt);
  EXPECT_EQ(d.sim.batteryInfo.fallbackInfo(*d.device), (Dictionary{{"BatteryPercentSingle", 64}}));
  EXPECT_TRUE(log.contains("Found cached info for Headset"));

  test::SimulatedDevice uncached({{"BatteryInfoDisableCache", true}}, 4, "Headset");
  uncached.device->setBatteryProperty("batteryPercentSingle", 64);
  uncached.sim.batteryInfo.fallbackInfo(*uncached.device);
  uncached.device->setBatteryProperty("batteryPercentSingle", std::nullopt);
  EXPECT_TRUE(uncached.sim.batteryInfo.fallbackInfo(*uncached.device).empty());
}

TEST(BatteryInfo, PrintModeAnswersFromTheDeviceAloneAndNeverThrows) {
  test::SimulatedDevice d({}, 4, "Headset");
  d.device->setBatteryProperty("batteryPercentSingle", 64);
  d.sim.batteryInfo.fallbackInfo(*d.device); // cached, which print mode must not use
  std::vector<Dictionary> printed;
  auto print = [&](const Dictionary& info) { printed.push_back(info); };
  d.sim.batteryInfo.printBatteryInfo(d.sim.bluetooth, "00:11:22:33:44:55", print);
  EXPECT_TRUE(printed.empty());
  d.device->setBatteryProperty("batteryPercentSingle", std::nullopt);
  d.sim.batteryInfo.printBatteryInfo(d.sim.bluetooth, d.address, print);
  EXPECT_EQ(printed, (std::vector<Dictionary>{{}}));

  test::CapturedLog log;
  d.sim.batteryInfo.mainPrintBatteryInfo(
      d.sim.bluetooth, d.address, [](const Dictionary&) { throw std::runtime_error("standard output is closed"); });
  EXPECT_TRUE(log.contains("Main battery info error standard output is closed"));
}

TEST(BatteryPresentation, TextsForOneLevelAndForEarbuds) {
  test::SimulatedDevice d({}, 4, "Headphones");
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  d.device->setBatteryProperty("batteryPercentSingle", 85);
  d.sim.deviceInfoCache.removeAll();
  EXPECT_EQ(d.setting->batteryLevel(), 85);
  EXPECT_EQ(d.setting->batteryLevelFormat(), "85%%");
  EXPECT_EQ(d.setting->batteryLevelString(), "Battery Level: 85%");
  EXPECT_EQ(d.setting->toolTipString(), "Headphones - Connected.\nBattery Level: 85%.");

  // Earbuds, as the helper tool reports them: zeros included.
  auto earbuds = [&](int left, int right) {
    d.sim.deviceInfoCache.setValue(d.setting.get(),
                                   Dictionary{{"BatteryPercentLeft", left}, {"BatteryPercentRight", right}});
  };
  earbuds(40, 70);
  EXPECT_EQ(d.setting->batteryLevel(), 40);
  EXPECT_EQ(d.setting->batteryLevelString(), "Battery Level: L: 40% R: 70%");
  earbuds(0, 70);
  EXPECT_EQ(d.setting->batteryLevel(), 70);
  EXPECT_EQ(d.setting->batteryLevelString(), "Battery Level: R: 70%");
  earbuds(0, 0);
  EXPECT_EQ(d.setting->batteryLevel(), 0);
  EXPECT_EQ(d.setting->batteryLevelString(), "Battery Level: ");
}

TEST(BatteryPresentation, DisconnectedOrUnknownSaysSo) {
  test::SimulatedDevice d({}, 4, "Headphones");
  d.device->setBatteryProperty("batteryPercentSingle", 85);
  EXPECT_EQ(d.setting->batteryLevel(), 85); // known, and cached
  EXPECT_EQ(d.setting->batteryLevelString(), "Battery Level: Unknown");
  EXPECT_EQ(d.setting->toolTipString(), "Headphones - Disconnected.");
  d.sim.world.removeDevice(d.address);
  EXPECT_EQ(d.setting->statusString(), std::nullopt);
  EXPECT_EQ(d.setting->toolTipString(), std::nullopt);
}

TEST(BatteryPresentation, TheStatusNamesTheRepairAndAMissingOutput) {
  test::SimulatedDevice d({}, 4, "Headphones");
  d.sim.audio.addDevice({"Headphones", "bluez." + d.address, true, true});
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  EXPECT_EQ(d.setting->statusString(), "Headphones - Connected (Not Sound Output)");
  d.setting->outputFixer().didFailToSetAudioOutput();
  EXPECT_EQ(d.setting->statusString(), "Headphones - Fixing Sound Output (Not Sound Output)");
}

TEST(BatteryPresentation, InformationIsReadAtMostOnceAMinute) {
  test::SimulatedDevice d({}, 4, "Headphones");
  d.sim.deviceInfoCache.removeAll();
  const int before = d.sim.batterySources.registryReads;
  d.setting->batteryLevel();
  d.sim.loop.advance(59);
  d.setting->batteryLevel();
  EXPECT_EQ(d.sim.batterySources.registryReads, before + 1);
  d.sim.loop.advance(1);
  d.setting->batteryLevel();
  EXPECT_EQ(d.sim.batterySources.registryReads, before + 2);

  d.sim.world.setConnected(d.address, true); // a connection reads afresh
  d.sim.loop.advance(0.2);
  d.setting->batteryLevel();
  EXPECT_EQ(d.sim.batterySources.registryReads, before + 3);
}

} // namespace lb
