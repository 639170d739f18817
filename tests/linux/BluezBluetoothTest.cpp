#include "linux/bluez/BluezBluetooth.h"
#include "linux/bluez/BluezDevice.h"
#include "linux/bluez/BluezErrors.h"
#include "tests/support/RequireService.h"
#include "tests/support/PrivateBus.h"

#include <gtest/gtest.h>

#include <future>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:CC";
constexpr const char* mouseAddress = "F0:99:B6:11:22:33";
const QString adapterPath = "/org/bluez/hci0";
const QString headsetPath = "/org/bluez/hci0/dev_00_1B_66_AA_BB_CC";

// A private system bus with the BlueZ model: one adapter, a paired headset
// (audio class) and a paired mouse.
class BluezTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (bus.skipReason().empty()) bus.startBluez();
    LB_REQUIRE_SERVICE(bus.skipReason());
    populate();
    connection = std::make_unique<QDBusConnection>(bus.connect("lanternbud"));
    bluetooth = std::make_unique<BluezBluetooth>(*connection);
  }

  void populate() {
    bus.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
    for (auto [address, name, deviceClass] :
         {std::tuple{headsetAddress, "WH Headset", 0x240404}, std::tuple{mouseAddress, "MX Mouse", 0x002580}}) {
      bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, name});
      bus.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, deviceClass});
    }
  }

  // Runs a blocking call on a thread of its own, as a worker would, while
  // the main thread keeps delivering signals.
  IOReturn onWorker(std::function<IOReturn()> call) {
    auto future = std::async(std::launch::async, std::move(call));
    test::waitUntil([&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 60);
    return future.get();
  }

  test::PrivateBus bus;
  std::unique_ptr<QDBusConnection> connection;
  std::unique_ptr<BluezBluetooth> bluetooth;
};

} // namespace

TEST_F(BluezTest, FindsDevicesByEitherAddressFormAndFollowsABluetoothdRestart) {
  for (auto form : {"00:1B:66:AA:BB:CC", "00-1b-66-aa-bb-cc"}) {
    auto device = bluetooth->deviceWithAddressString(form);
    ASSERT_TRUE(device) << form;
    EXPECT_EQ(device->addressString(), headsetAddress); // as BlueZ writes it
  }
  auto headset = bluetooth->deviceWithAddressString(headsetAddress);
  EXPECT_EQ(headset->name(), "WH Headset");
  EXPECT_EQ(headset->majorDeviceClass(), 4u);
  EXPECT_FALSE(bluetooth->deviceWithAddressString("11:22:33:44:55:66"));
  EXPECT_EQ(bluetooth->pairedDevices().size(), 2u);

  bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", "AA:AA:AA:AA:AA:AA", "Later Speaker"});
  EXPECT_TRUE(test::waitUntil([&] { return bluetooth->deviceWithAddressString("aa-aa-aa-aa-aa-aa") != nullptr; }));
  // A Low Energy speaker has no class; its A2DP sink profile makes it audio.
  auto speaker = bluetooth->deviceWithAddressString("aa-aa-aa-aa-aa-aa");
  EXPECT_EQ(speaker->majorDeviceClass(), 0u);
  bus.bluez("/org/bluez/hci0/dev_AA_AA_AA_AA_AA_AA", "org.freedesktop.DBus.Mock", "UpdateProperties",
            {"org.bluez.Device1", QVariantMap{{"UUIDs", QStringList{"0000110B-0000-1000-8000-00805F9B34FB"}}}});
  EXPECT_TRUE(test::waitUntil([&] { return speaker->majorDeviceClass() == 4u; }));
  // Only paired devices are offered to add; a pairing is told.
  int pairings = 0;
  auto pairing = bluetooth->registerForPairingChanges([&] { ++pairings; });
  bus.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", "AA:AA:AA:AA:AA:AA", 0x240414});
  EXPECT_TRUE(test::waitUntil([&] { return pairings > 0 && bluetooth->pairedDevices().size() == 3; }));

  // A bluetoothd restart is followed; a device held meanwhile works again.
  bus.killBluez();
  ASSERT_TRUE(test::waitUntil([&] { return !bluetooth->deviceWithAddressString(headsetAddress); }));
  EXPECT_FALSE(bluetooth->isAvailable());
  EXPECT_EQ(onWorker([&] { return headset->openConnection(); }).code(), 704);

  ASSERT_TRUE(bus.startBluez());
  populate();
  EXPECT_TRUE(test::waitUntil([&] { return bluetooth->deviceWithAddressString("00-1b-66-aa-bb-cc") != nullptr; }));
  EXPECT_TRUE(bluetooth->isAvailable());
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return headset->openConnection(); })));

  // Stopped while the program starts, it keeps its name and answers
  // nothing: it is asked again until it answers.
  bus.pauseBluez(true);
  BluezBluetooth starting(bus.connect("starting"));
  EXPECT_FALSE(starting.isAvailable());
  bus.pauseBluez(false);
  EXPECT_TRUE(test::waitUntil([&] { return starting.deviceWithAddressString(headsetAddress) != nullptr; }));
  EXPECT_TRUE(starting.isAvailable());
}

TEST_F(BluezTest, ConnectAndDisconnectWithTheirNotificationsAndTheBatteryLevel) {
  std::vector<std::string> heard;
  auto connects = bluetooth->registerForConnectNotifications(
      [&](const BluetoothNotification&, std::shared_ptr<BluetoothDevice> device) {
        heard.push_back("connected " + device->addressString());
      });
  auto headset = bluetooth->deviceWithAddressString(headsetAddress);
  auto disconnects = bluetooth->registerForDisconnectNotification(
      *headset, [&](const BluetoothNotification&, std::shared_ptr<BluetoothDevice> device) {
        heard.push_back("disconnected " + device->addressString());
      });

  // BlueZ adds Battery1 once the connected headset reports its level; the
  // level comes from the mirror.
  EXPECT_FALSE(headset->batteryProperty("batteryPercentSingle"));
  bus.bluez("/", "org.bluez.Mock", "AddBatteryService",
            {QVariant::fromValue(QDBusObjectPath(headsetPath)), QVariant::fromValue(uchar(73))});
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return headset->openConnection(); })));
  EXPECT_TRUE(test::waitUntil([&] { return headset->isConnected() && heard.size() == 1; }));
  EXPECT_TRUE(test::waitUntil([&] { return headset->batteryProperty("batteryPercentSingle") == SettingsValue(73); }));
  bus.bluez(headsetPath, "org.freedesktop.DBus.Mock", "UpdateProperties",
            {"org.bluez.Battery1", QVariantMap{{"Percentage", QVariant::fromValue(uchar(72))}}});
  EXPECT_TRUE(test::waitUntil([&] { return headset->batteryProperty("batteryPercentSingle") == SettingsValue(72); }));
  EXPECT_FALSE(headset->batteryProperty("batteryPercentLeft"));
  EXPECT_TRUE(pxrIsBluetoothAlreadyConnected(onWorker([&] { return headset->openConnection(20000); })));
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return headset->closeConnection(); })));
  EXPECT_TRUE(test::waitUntil([&] { return !headset->isConnected() && heard.size() == 2; }));

  // The mouse's disconnection is not the headset's business: by the
  // headset's next connection it has not been heard.
  auto mouse = bluetooth->deviceWithAddressString(mouseAddress);
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return mouse->openConnection(); })));
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return mouse->closeConnection(); })));
  EXPECT_TRUE(pxrIsSuccess(onWorker([&] { return headset->openConnection(); })));
  EXPECT_TRUE(test::waitUntil([&] { return heard.size() >= 4; }));
  EXPECT_EQ(heard, (std::vector<std::string>{"connected 00:1B:66:AA:BB:CC", "disconnected 00:1B:66:AA:BB:CC",
                                             "connected F0:99:B6:11:22:33", "connected 00:1B:66:AA:BB:CC"}));
}

TEST_F(BluezTest, BluezErrorsBecomeResultCodes) {
  auto headset = bluetooth->deviceWithAddressString(headsetAddress);
  bus.bluez(headsetPath, "org.freedesktop.DBus.Mock", "AddMethod",
            {"org.bluez.Device1", "Connect", "", "",
             "raise dbus.exceptions.DBusException('Page Timeout', name='org.bluez.Error.Failed')"});
  auto page = onWorker([&] { return headset->openConnection(); });
  EXPECT_EQ(page.code(), 4);
  EXPECT_EQ(page.detail, "org.bluez.Error.Failed: Page Timeout");
  for (auto [name, message, code] : {std::tuple{"org.bluez.Error.Failed", "br-connection-page-timeout", 4},
                                     {"org.bluez.Error.NotReady", "Resource Not Ready", 727},
                                     {"org.freedesktop.DBus.Error.NoReply", "Did not receive a reply", 726},
                                     {"org.freedesktop.DBus.Error.UnknownObject", "", 704},
                                     {"org.bluez.Error.Failed", "Input/output error", 700}}) {
    EXPECT_EQ(bluezResult(name, message).code(), code) << name << " " << message;
  }

  // An adapter that is off: known from the mirror, nothing is sent.
  bus.bluez(adapterPath, "org.freedesktop.DBus.Mock", "UpdateProperties",
            {"org.bluez.Adapter1", QVariantMap{{"Powered", false}}});
  ASSERT_TRUE(test::waitUntil([&] { return onWorker([&] { return headset->openConnection(); }).code() == 727; }));

  // Unpaired while held: gone for lookups, and its calls answer at once.
  bus.bluez(adapterPath, "org.bluez.Adapter1", "RemoveDevice", {QVariant::fromValue(QDBusObjectPath(headsetPath))});
  EXPECT_TRUE(test::waitUntil([&] { return !bluetooth->deviceWithAddressString(headsetAddress); }));
  EXPECT_EQ(onWorker([&] { return headset->openConnection(); }).code(), 704);

  EXPECT_LT(bluezResult("org.bluez.Error.Failed", std::string(5000, 'x')).detail.size(), 250u);
  EXPECT_EQ(BluezDevice::callTimeout(20000), std::chrono::milliseconds(32'500));
  EXPECT_EQ(BluezDevice::callTimeout(std::nullopt), std::chrono::milliseconds(25'120));
}

} // namespace lb
