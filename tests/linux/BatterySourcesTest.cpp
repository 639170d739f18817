#include "core/BatteryInfo.h"
#include "linux/bluez/BluezBluetooth.h"
#include "linux/battery/LinuxBatterySources.h"
#include "linux/battery/PropertyList.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/VirtualEventLoop.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

#include <gtest/gtest.h>

#include <filesystem>

namespace lb {

using Dictionary = SettingsValue::Dictionary;

namespace {

constexpr const char* mouseAddress = "F0:99:B6:11:22:33";

QVariant variant(const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); }

// A private system bus with UPower's model holding a Bluetooth mouse's
// battery, as UPower shows a HID battery, and the laptop's own.
class UPowerTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (bus.skipReason().empty()) bus.startUPower();
    LB_REQUIRE_SERVICE(bus.skipReason());
    mousePath = addBattery("hid_f0_99_b6_11_22_33_battery", "MX Mouse", 55.7,
                           {{"NativePath", "hid-f0:99:b6:11:22:33-battery"}, {"Serial", "f0:99:b6:11:22:33"}});
    addBattery("BAT0", "Laptop", 90.0, {{"NativePath", "BAT0"}});
    connection = std::make_unique<QDBusConnection>(bus.connect("lanternbud"));
  }

  QString addBattery(const QString& name, const QString& model, double percentage, const QVariantMap& properties) {
    auto reply = bus.upower("AddDischargingBattery", {name, model, percentage, qlonglong(3600)});
    auto path = reply.arguments().value(0).toString();
    // The model's batteries lack these properties; UPower's have them.
    for (auto it = properties.begin(); it != properties.end(); ++it) {
      bus.upower("AddProperty", {"org.freedesktop.UPower.Device", it.key(), variant(it.value())}, path);
    }
    return path;
  }

  std::optional<Dictionary> propertiesAt(const UPowerRegistry& registry, const QString& path) {
    for (const auto& entry : registry.entries()) {
      if (entry.path == path.toStdString()) return entry.properties;
    }
    return std::nullopt;
  }

  test::PrivateBus bus;
  QString mousePath;
  std::unique_ptr<QDBusConnection> connection;
};

} // namespace

TEST_F(UPowerTest, EveryDeviceIsAnEntryWithTheBatteryKeys) {
  UPowerRegistry registry(*connection);
  auto entries = registry.entries();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "org.freedesktop.UPower.Device");
  EXPECT_EQ(propertiesAt(registry, mousePath), (Dictionary{{"DeviceAddress", mouseAddress},
                                                           {"SerialNumber", "f0:99:b6:11:22:33"},
                                                           {"Product", "MX Mouse"},
                                                           {"BatteryPercentSingle", 55}}));

  // Followed from UPower's signals: a change, a new device, a removal.
  bus.upower("SetDeviceProperties",
             {QVariant::fromValue(QDBusObjectPath(mousePath)), QVariantMap{{"Percentage", 41.0}}});
  EXPECT_TRUE(test::waitUntil(
      [&] { return propertiesAt(registry, mousePath)->at("BatteryPercentSingle") == SettingsValue(41); }));
  auto pad = addBattery("pad", "Gamepad", 12.0, {});
  EXPECT_TRUE(test::waitUntil([&] { return propertiesAt(registry, pad).has_value(); }));
  bus.upower("RemoveDevice", {QVariant::fromValue(QDBusObjectPath(mousePath))});
  EXPECT_TRUE(test::waitUntil([&] { return !propertiesAt(registry, mousePath); }));
}

TEST_F(UPowerTest, TheBatterySearchFindsTheMouseThroughUPower) {
  ASSERT_TRUE(bus.startBluez());
  bus.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
  bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", mouseAddress, "MX Mouse"});
  BluezBluetooth bluetooth(*connection);
  UPowerRegistry registry(*connection);
  LinuxBatterySources sources(registry, HelperTool("/nonexistent/LanternbudHelperTool"));
  InMemorySettingsStore store;
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  VirtualEventLoop clock;
  BatteryInfo batteryInfo(sources, tunables, clock, clock.now());
  auto mouse = bluetooth.deviceWithAddressString(mouseAddress);
  ASSERT_TRUE(mouse);
  EXPECT_EQ(batteryInfo.info(*mouse), (Dictionary{{"BatteryPercentSingle", 55}}));
}

// The helper tool's answer read back: a real process printing a property
// list, one printing something else, and one that is not there.
TEST(HelperTool, TheAnswerIsTheParsedPropertyList) {
  test::TemporaryDirectory folder;
  auto helper = folder / "LanternbudHelperTool";
  const Dictionary answer{{"BatteryPercentLeft", 40}, {"BatteryPercentRight", 70.5}, {"Name", "Buds <&>"}};
  test::writeFile(helper, "#!/bin/sh\n[ \"$1\" = -PrintBatteryInfo ] && [ \"$2\" = AA:BB ] || exit 1\ncat <<'END'\n" +
                              PropertyList::xml(answer) + "END\n");
  std::filesystem::permissions(helper, std::filesystem::perms::owner_all);
  HelperTool tool(helper.string());
  EXPECT_EQ(tool.run("AA:BB"), SettingsValue(answer));
  EXPECT_THROW(tool.run("CC:DD"), std::runtime_error); // printed nothing

  test::writeFile(helper, "#!/bin/sh\necho 'not a list'\n");
  EXPECT_THROW(tool.run("AA:BB"), std::runtime_error);
  EXPECT_THROW(HelperTool((folder / "absent").string()).run("AA:BB"), std::runtime_error);
}

} // namespace lb
