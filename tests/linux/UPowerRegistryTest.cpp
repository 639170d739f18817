#include "linux/battery/UPowerRegistry.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

#include <gtest/gtest.h>

namespace lb {

using Dictionary = SettingsValue::Dictionary;

namespace {

constexpr const char* mouseAddress = "F0:99:B6:11:22:33";

QVariant variant(const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); }

// A battery of UPower's model, with the properties that UPower's own have
// and the model's lack; its path.
QString addBattery(test::PrivateBus& bus, const QString& name, const QString& model, double percentage,
                   const QVariantMap& properties) {
  auto path =
      bus.upower("AddDischargingBattery", {name, model, percentage, qlonglong(3600)}).arguments().value(0).toString();
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

} // namespace

// A Bluetooth mouse's battery, as UPower shows a HID battery, and the
// laptop's own.
TEST(UPowerRegistry, EveryDeviceIsAnEntryWithTheBatteryKeys) {
  test::PrivateBus bus;
  if (bus.skipReason().empty()) bus.startUPower();
  LB_REQUIRE_SERVICE(bus.skipReason());
  const auto mousePath = addBattery(bus, "hid_f0_99_b6_11_22_33_battery", "MX Mouse", 55.7,
                                    {{"NativePath", "hid-f0:99:b6:11:22:33-battery"}, {"Serial", "f0:99:b6:11:22:33"}});
  addBattery(bus, "BAT0", "Laptop", 90.0, {{"NativePath", "BAT0"}});
  UPowerRegistry registry(bus.connect("lanternbud"));
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
  auto pad = addBattery(bus, "pad", "Gamepad", 12.0, {});
  EXPECT_TRUE(test::waitUntil([&] { return propertiesAt(registry, pad).has_value(); }));
  bus.upower("RemoveDevice", {QVariant::fromValue(QDBusObjectPath(mousePath))});
  EXPECT_TRUE(test::waitUntil([&] { return !propertiesAt(registry, mousePath); }));
}

} // namespace lb
