#include "core/LowEnergyBatteryInfo.h"
#include "linux/bluez/BluezLowEnergyCentral.h"
#include "sim/InMemorySettingsStore.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"

#include <gtest/gtest.h>

#include <QDBusVariant>

namespace lb {

namespace {

const QString adapterPath = "/org/bluez/hci0";
constexpr const char* budsAddress = "C0:28:8D:01:02:03";
constexpr const char* mouseAddress = "D4:11:22:33:44:55";

} // namespace

// The reader over BlueZ's model: its GATT objects answer ReadValue, and the
// Battery Service that bluetoothd claims is read from Battery1.
TEST(LowEnergyBatteryInfo, ReadsMatchingPeripheralsOnlyWhileSwitchedOnAndReconnectsThem) {
  test::PrivateBus bus;
  if (bus.skipReason().empty()) bus.startBluez();
  LB_REQUIRE_SERVICE(bus.skipReason());
  bus.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
  auto connection = bus.connect("lanternbud");
  auto discovering = [&] {
    auto reply = bus.bluez(adapterPath, "org.freedesktop.DBus.Properties", "Get",
                           {"org.bluez.Adapter1", "Discovering"});
    return reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
  };

  test::CapturedLog log({"LogLowEnergyBatteryInfo"});
  InMemorySettingsStore store({{"LowEnergyBatteryInfoPattern", std::string("Buds")}});
  UserDefaults defaults(store);
  Tunables tunables(defaults);
  LowEnergyBatteryInfo reader(defaults, tunables, [&] { return std::make_unique<BluezLowEnergyCentral>(connection); });
  EXPECT_FALSE(discovering());

  defaults.setValue("LowEnergyBatteryInfoEnable", true);
  ASSERT_TRUE(test::waitUntil(discovering));
  const auto budsPath = test::PrivateBus::bluezDevicePath(budsAddress);
  bus.bluez("/", "org.bluez.Mock", "AddBatteryService",
            {QVariant::fromValue(QDBusObjectPath(budsPath)), QVariant::fromValue(uchar(85))});
  bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", mouseAddress, "Desk Mouse"});
  bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", budsAddress, "Galaxy Buds"});
  auto levels = [&] {
    auto messages = log.messages();
    return std::count(messages.begin(), messages.end(), "Battery level of Galaxy Buds 85");
  };
  ASSERT_TRUE(test::waitUntil([&] { return levels() == 1; }));
  // Every readable characteristic is read.
  EXPECT_TRUE(test::waitUntil([&] { return log.contains("characteristic 2A29 value <4c616e7465726e>"); }));
  EXPECT_FALSE(bus.bluezConnected(mouseAddress)); // not named like the pattern

  bus.bluez(budsPath, "org.bluez.Device1", "Disconnect");
  ASSERT_TRUE(test::waitUntil([&] { return levels() == 2; })) << "reconnected and read again";
  EXPECT_TRUE(bus.bluezConnected(budsAddress));

  defaults.setValue("LowEnergyBatteryInfoEnable", false);
  EXPECT_FALSE(reader.isRunning());
  EXPECT_TRUE(test::waitUntil([&] { return !discovering(); }));
}

} // namespace lb
