// With 10 paired devices on a private bus with the BlueZ model and the state
// tracking running at its default rate, counts the D-Bus messages that
// Lanternbud's connection sends. Prints the figure; the target is 0.
//   bluez_idle_benchmark [seconds]   (default 60)
#include "core/DeviceSetting.h"
#include "linux/bluez/BluezBluetooth.h"
#include "linux/system/QtEventLoop.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/PrivateBus.h"

#include <QCoreApplication>

#include <cstdio>

using namespace lb;

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const double seconds = argc > 1 ? std::atof(argv[1]) : 60;
  test::PrivateBus bus;
  if (!bus.skipReason().empty() || !bus.startBluez()) {
    std::fprintf(stderr, "cannot run: %s\n", bus.skipReason().c_str());
    return 1;
  }
  bus.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "benchmark"});
  for (int i = 0; i < 10; ++i) {
    auto address = QString("00:11:22:33:44:%1").arg(i, 2, 10, QChar('0'));
    bus.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, QString("Device %1").arg(i)});
    bus.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
  }

  auto connection = bus.connect("lanternbud");
  BluezBluetooth bluetooth(connection);
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  QtEventLoop loop;
  Services services = sim.servicesWith({.loop = &loop, .bluetooth = &bluetooth});
  std::vector<std::shared_ptr<DeviceSetting>> settings;
  for (int i = 0; i < 10; ++i) {
    auto address = QString("00-11-22-33-44-%1").arg(i, 2, 10, QChar('0')).toStdString();
    settings.push_back(DeviceSetting::make(services, {{"deviceID", i + 1}, {"device", address}}));
    settings.back()->setupStatusItem();
  }

  test::PrivateBus::MessageCounter sent(bus, "sender='" + connection.baseService() + "'");
  if (!sent.started()) {
    std::fprintf(stderr, "cannot run: dbus-monitor did not start\n");
    return 1;
  }
  test::waitUntil([] { return false; }, seconds);
  int updates = 0;
  for (const auto& setting : settings) updates += setting->isConnected().has_value();
  std::printf("10 paired devices, state tracking every %.1f s for %.0f s (%d devices followed): "
              "%d D-Bus messages sent by Lanternbud (target 0)\n",
              sim.tunables(tunable::ConnectionUpdateTimerInterval).count(), seconds, updates, sent.count());
  return 0;
}
