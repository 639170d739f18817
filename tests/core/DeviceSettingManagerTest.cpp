#include "core/DeviceSettingManager.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

SettingsValue::Dictionary saved(std::int64_t id, const std::string& address) {
  return {{"deviceID", id}, {"device", address}};
}

std::vector<std::int64_t> idsOf(const DeviceSettingManager& registry) {
  std::vector<std::int64_t> ids;
  for (const auto& setting : registry.deviceSettingList()) ids.push_back(setting->deviceID());
  return ids;
}

} // namespace

TEST(DeviceSettingManager, LoadsSavedDevicesAndGivesOutTheNextID) {
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a"), saved(5, "b"), saved(3, "c")}}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("new", "New", 5);
  DeviceSettingManager registry(sim.services);
  EXPECT_EQ(idsOf(registry), (std::vector<std::int64_t>{1, 5, 3})); // saved order until a change
  EXPECT_EQ(registry.maxDeviceID(), 6);
  EXPECT_FALSE(registry.firstLaunch());
  EXPECT_EQ(store.value("currentSettingVersion"), SettingsValue("2.8.2"));

  auto added = registry.add(*sim.bluetooth.deviceWithAddressString("new"));
  ASSERT_TRUE(added);
  EXPECT_EQ(added->deviceID(), 6);
  EXPECT_EQ(registry.maxDeviceID(), 7);
}

TEST(DeviceSettingManager, OneElementThatIsNotADictionaryLoadsNothing) {
  test::CapturedLog log({"LogDock"});
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a"), "not a device"}}});
  SimulatedPlatform sim(store);
  DeviceSettingManager registry(sim.services);
  EXPECT_TRUE(registry.deviceSettingList().empty());
  EXPECT_TRUE(registry.firstLaunch());
  EXPECT_EQ(registry.maxDeviceID(), 1);
  EXPECT_TRUE(log.contains(R"(Devices to load: [["device": "a", "deviceID": 1], "not a device"])"));
  // Kept aside, each under a key of its own: the save at quit writes this
  // run's empty list, and a second bad list replaces no first one.
  registry.synchronize();
  store.setValue("devices", "second");
  DeviceSettingManager again(sim.services);
  std::vector<std::optional<SettingsValue>> kept; // under the keys the log names
  const std::string keptUnder = "kept under \"devices.unreadable-";
  for (const auto& message : log.messages()) {
    const auto start = message.find(keptUnder);
    if (start == std::string::npos) continue;
    const auto key = start + keptUnder.size() - std::string("devices.unreadable-").size();
    kept.push_back(store.value(message.substr(key, message.find('"', key) - key)));
  }
  EXPECT_EQ(kept, (std::vector<std::optional<SettingsValue>>{SettingsValue::Array{saved(1, "a"), "not a device"},
                                                             SettingsValue("second")}));

  InMemorySettingsStore empty;
  SimulatedPlatform fresh(empty);
  test::CapturedLog freshLog({"LogDock"});
  DeviceSettingManager none(fresh.services);
  EXPECT_TRUE(freshLog.contains("Devices to load: nil"));
  EXPECT_EQ(none.maxDeviceID(), 1);
}

TEST(DeviceSettingManager, IDsMissingRepeatedOrOutOfRangeGetFreshOnes) {
  test::CapturedLog log;
  SettingsValue::Dictionary noID{{"device", "e"}};
  SettingsValue::Dictionary textID{{"deviceID", "7"}, {"device", "f"}};
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a"), saved(1, "b"), saved(-3, "c"),
                                                                saved(INT64_MAX, "d"), noID, textID, saved(5, "g")}}});
  SimulatedPlatform sim(store);
  DeviceSettingManager registry(sim.services);
  EXPECT_EQ(idsOf(registry), (std::vector<std::int64_t>{1, 6, 7, 8, 9, 10, 5}));
  EXPECT_EQ(registry.maxDeviceID(), 11);
  EXPECT_TRUE(log.contains("A saved device had the ID -3, which is missing, repeated or out of range; it is now 7."));

  // A device without an address is kept as it is, and said once.
  InMemorySettingsStore lost({{"devices", SettingsValue::Array{SettingsValue::Dictionary{{"deviceID", 2}}}}});
  SimulatedPlatform other(lost);
  DeviceSettingManager keeps(other.services);
  other.loop.advance(30);
  keeps.synchronize();
  EXPECT_EQ(lost.value("devices"), SettingsValue(SettingsValue::Array{SettingsValue::Dictionary{{"deviceID", 2}}}));
  int told = 0;
  for (const auto& message : log.messages()) told += message.starts_with("No device address for options");
  EXPECT_EQ(told, 1);
}

TEST(DeviceSettingManager, SortsByNameIgnoringCaseAndKeepsEqualNamesInOrder) {
  InMemorySettingsStore store(
      {{"devices", SettingsValue::Array{saved(1, "b"), saved(2, "A"), saved(3, "a"), saved(9, "x"), saved(4, "y")}}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("b", "beta", 5);
  sim.world.addDevice("A", "Alpha", 5);
  sim.world.addDevice("a", "alpha", 5);
  sim.world.addDevice("x", std::nullopt, 5);
  sim.world.addDevice("y", std::nullopt, 5);
  DeviceSettingManager registry(sim.services);
  registry.sort();
  // Alpha and alpha are equal and keep their order; beta follows; the two
  // without names go by ID.
  EXPECT_EQ(idsOf(registry), (std::vector<std::int64_t>{2, 3, 1, 4, 9}));
}

TEST(DeviceSettingManager, AddingARegisteredAddressChangesNothing) {
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a")}}});
  SimulatedPlatform sim(store);
  auto& device = sim.world.addDevice("a", "Mouse", 5);
  DeviceSettingManager registry(sim.services);
  EXPECT_EQ(registry.add(device), nullptr);
  EXPECT_EQ(registry.deviceSettingList().size(), 1u);
  EXPECT_EQ(registry.maxDeviceID(), 2);
  EXPECT_TRUE(sim.statusBar.items().empty());
}

TEST(DeviceSettingManager, RemovingDeletesScriptsAndShortcutKeysButNotTheSavedList) {
  const SettingsValue devices = SettingsValue::Array{saved(1, "a"), saved(2, "b")};
  const std::string folder = SimScriptsFolder::folder;
  InMemorySettingsStore store({{"devices", devices},
                               {"shortcutDictForDevice2", SettingsValue::Dictionary{}},
                               {"shortcutForDevice2", "old"},
                               {"shortcutDictForDevice1", SettingsValue::Dictionary{}},
                               {"scriptFolderURL", SettingsValue::Data(folder.begin(), folder.end())}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  sim.scriptsFolder.files = {{"2.connected", "x"}, {"2.disconnected", "y"}, {"1.connected", "z"}};
  DeviceSettingManager registry(sim.services);
  for (const auto& setting : registry.deviceSettingList()) setting->setupStatusItem();

  registry.remove(1);
  EXPECT_EQ(idsOf(registry), std::vector<std::int64_t>{1});
  EXPECT_EQ(sim.scriptsFolder.files, (std::map<std::string, std::string>{{"1.connected", "z"}}));
  EXPECT_FALSE(store.value("shortcutDictForDevice2"));
  EXPECT_FALSE(store.value("shortcutForDevice2"));
  EXPECT_TRUE(store.value("shortcutDictForDevice1"));
  EXPECT_EQ(sim.statusBar.items().size(), 1u);
  EXPECT_EQ(store.value("devices"), devices); // until the next save
  registry.synchronize();
  EXPECT_EQ(store.value("devices")->as<SettingsValue::Array>()->size(), 1u);

  // In a sandbox without a usable grant the files stay, and nothing is
  // asked; without a sandbox no grant is needed.
  sim.scriptsFolder.bookmarksResolve = false;
  sim.scriptsFolder.grantNeeded = true;
  registry.remove(0);
  EXPECT_EQ(sim.scriptsFolder.files.size(), 1u);
  EXPECT_TRUE(sim.scriptsFolder.prompts.empty());
  sim.scriptsFolder.grantNeeded = false;
  ScriptSaver(sim.scriptsFolder, sim.defaults).cleanUp(1, ScriptType::connected);
  EXPECT_TRUE(sim.scriptsFolder.files.empty());
}

TEST(DeviceSettingManager, AConnectNotificationReachesEveryDeviceWithThatAddress) {
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a"), saved(2, "a"), saved(3, "b")}}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Headset", 4);
  sim.world.addDevice("b", "Mouse", 5);
  sim.world.setConnected("b", true);
  DeviceSettingManager registry(sim.services);
  auto& list = registry.deviceSettingList();
  for (const auto& setting : list) setting->updateConnectionState(ConnectionUpdateReason::toggle());

  sim.world.setConnected("a", true);
  sim.loop.advance(0.05); // the notification arrived; the update waits 0.1 s
  EXPECT_EQ(list[0]->isConnected(), false);
  sim.loop.advance(0.05);
  EXPECT_EQ(list[0]->isConnected(), true);
  EXPECT_EQ(list[1]->isConnected(), true);
}

TEST(DeviceSettingManager, TheWelcomeShowsOnceHalfASecondAfterTheFirstItem) {
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  DeviceSettingManager registry(sim.services);
  ASSERT_TRUE(registry.firstLaunch());
  registry.add(*sim.bluetooth.deviceWithAddressString("a"));
  EXPECT_FALSE(registry.firstLaunch());
  sim.loop.advance(0.49);
  EXPECT_TRUE(sim.windows.landingShownUnder.empty());
  sim.loop.advance(0.01);
  ASSERT_EQ(sim.windows.landingShownUnder.size(), 1u);
  EXPECT_EQ(sim.windows.landingShownUnder[0], sim.statusBar.items()[0]);
  registry.add(*sim.bluetooth.deviceWithAddressString("b"));
  sim.loop.advance(5);
  EXPECT_EQ(sim.windows.landingShownUnder.size(), 1u);
}

TEST(DeviceSettingManager, SavingKeepsADictionaryWithoutAnAddressAsItWas) {
  const SettingsValue::Dictionary odd{{"deviceID", 4}, {"fromAnOlderVersion", true}};
  InMemorySettingsStore store({{"devices", SettingsValue::Array{odd}}});
  SimulatedPlatform sim(store);
  {
    test::CapturedLog log; // its lookups log errors; quietly here
    DeviceSettingManager registry(sim.services);
    registry.synchronize();
    EXPECT_EQ(store.value("devices"), SettingsValue(SettingsValue::Array{odd}));
  }
}

TEST(DeviceSettingManager, GoingAwayUnregistersEverythingAndSaves) {
  InMemorySettingsStore store({{"devices", SettingsValue::Array{saved(1, "a")}}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  const auto timersBefore = sim.loop.activeTimers().size();
  {
    DeviceSettingManager registry(sim.services);
    registry.deviceSettingList()[0]->setupStatusItem();
    EXPECT_EQ(sim.world.subscriptionCount(), 2u);
  }
  EXPECT_EQ(sim.world.subscriptionCount(), 0u);
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.shortcuts.isBound("shortcutDictForDevice1"));
  auto stored = store.value("devices");
  auto devices = stored->as<SettingsValue::Array>();
  EXPECT_EQ(devices->at(0).as<SettingsValue::Dictionary>()->at("deviceName"), SettingsValue("Alpha"));
  EXPECT_EQ(sim.loop.activeTimers().size(), timersBefore); // icon timer and slow timer gone
}

} // namespace lb
