#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

#include <set>

namespace lb {

TEST(Scripting, RequestsSayWhatTheyDidAndARunningAttemptIgnoresMore) {
  test::CapturedLog log({"LogConnect"});
  test::SimulatedDevice d;
  d.device->setConnectBehaviour(sim::succeedsAfter(3));
  d.setting->setScriptingIsConnected(false);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::unchanged);
  EXPECT_EQ(d.setting->connect(), ConnectionOutcome::connecting);
  EXPECT_FALSE(d.setting->scriptingIsConnected()); // the change follows later
  for (int i = 0; i < 20; ++i) d.setting->setScriptingIsConnected(true);
  EXPECT_EQ(d.setting->toggleConnection(), ConnectionOutcome::busy);
  EXPECT_TRUE(log.contains("Ignoring a request for <DeviceSetting: Keyboard> while a connection attempt is under way"));
  d.sim.loop.advance(4);
  EXPECT_EQ(d.device->connectCalls().size(), 1u);
  EXPECT_EQ(d.device->disconnectCalls(), 0);
  EXPECT_TRUE(d.setting->scriptingIsConnected());
  EXPECT_EQ(d.setting->connect(), ConnectionOutcome::unchanged);

  d.setting->setConnectionOnlyMode(true);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::connectionOnly);
  d.setting->setConnectionOnlyMode(false);
  EXPECT_EQ(d.setting->disconnect(), ConnectionOutcome::disconnecting);
  d.sim.loop.advance(3);
  EXPECT_EQ(d.device->disconnectCalls(), 1);
  EXPECT_FALSE(d.setting->scriptingIsConnected());
}

TEST(Scripting, AnUnknownDeviceHasNoNameAddressOrLevel) {
  test::SimulatedDevice d({}, 4, "Headset");
  d.device->setBatteryProperty("batteryPercentSingle", 70);
  EXPECT_EQ(d.setting->scriptingBatteryLevel(), std::nullopt); // disconnected, though a level is known
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  EXPECT_EQ(d.setting->scriptingBatteryLevel(), 70);
  EXPECT_EQ(d.setting->scriptingAddress(), d.address);

  // A mirror takes the last level read, even stale, and reads none itself;
  // a client that asks gets a fresh one. (A device outside the registry:
  // no tray reads its level meanwhile.)
  auto headset = DeviceSetting::make(d.sim.services, {{"deviceID", 8}, {"device", d.address}});
  d.sim.loop.advance(2);                                                    // seen connected
  EXPECT_EQ(headset->scriptingBatteryLevel(BatteryReading::lastKnown), 70); // none known: read
  d.device->setBatteryProperty("batteryPercentSingle", 60);
  d.sim.loop.advance(120);
  const int reads = d.sim.batterySources.registryReads;
  EXPECT_EQ(headset->scriptingBatteryLevel(BatteryReading::lastKnown), 70);
  EXPECT_EQ(d.sim.batterySources.registryReads, reads);
  EXPECT_EQ(headset->scriptingBatteryLevel(), 60);

  auto stranger = DeviceSetting::make(d.sim.services, {{"deviceID", 9}, {"device", "AA-AA-AA-AA-AA-AA"}});
  EXPECT_EQ(stranger->scriptingName(), "");
  EXPECT_EQ(stranger->scriptingID(), 9);
  EXPECT_EQ(stranger->scriptingAddress(), std::nullopt);
  EXPECT_FALSE(stranger->scriptingIsConnected());
  EXPECT_EQ(stranger->scriptingBatteryLevel(), std::nullopt);
  EXPECT_EQ(stranger->shellScriptAfterConnected(), "#!/bin/sh\n");
}

TEST(Scripting, TheRegistryTellsOfAddsRemovalsAndRedraws) {
  test::SimulatedDevice d;
  int changes = 0, otherChanges = 0;
  std::set<const DeviceSetting*> changed;
  auto listening = d.registry->addChangeListener([&](const DeviceSetting* device) {
    ++changes;
    changed.insert(device);
  });
  auto other = d.registry->addChangeListener([&](const DeviceSetting*) { ++otherChanges; });
  auto& mouse = d.sim.world.addDevice("AA-BB-CC-DD-EE-FF", "Mouse", 5);
  d.registry->add(mouse);
  EXPECT_TRUE(changed.contains(nullptr)); // the list
  changed.clear();
  d.sim.world.setConnected(d.address, true);
  d.sim.loop.advance(1);
  EXPECT_EQ(changed, std::set<const DeviceSetting*>{d.setting.get()}); // only the keyboard
  changes = 0;
  d.registry->remove(0);
  EXPECT_GE(changes, 1);
  EXPECT_GE(otherChanges, 3);

  listening.reset();
  changes = 0;
  d.registry->updateItemIcon();
  EXPECT_EQ(changes, 0);
  d.registry.reset();
  other.reset(); // after its registry: nothing to undo
}

} // namespace lb
