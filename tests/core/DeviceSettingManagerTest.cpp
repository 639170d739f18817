#include "core/DeviceSettingManager.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <set>

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

// IDs missing, repeated or out of range get fresh ones; a registered
// address is not added again.
TEST(DeviceSettingManager, LoadsSavedDevicesAndGivesOutTheNextID) {
  const SettingsValue::Dictionary noID{{"device", "g"}}, textID{{"deviceID", "7"}, {"device", "h"}};
  InMemorySettingsStore store(
      {{"devices", SettingsValue::Array{saved(1, "a"), saved(5, "b"), saved(3, "c"), saved(1, "d"), saved(-3, "e"),
                                        saved(INT64_MAX, "f"), noID, textID}}});
  SimulatedPlatform sim(store);
  DeviceSettingManager registry(sim.services);
  EXPECT_EQ(idsOf(registry), (std::vector<std::int64_t>{1, 5, 3, 6, 7, 8, 9, 10})); // saved order until a change
  EXPECT_FALSE(registry.firstLaunch());
  EXPECT_EQ(store.value("currentSettingVersion"), SettingsValue("2.8.2"));
  EXPECT_EQ(registry.add(sim.world.addDevice("a", "Mouse", 5)), nullptr);
  EXPECT_EQ(registry.add(sim.world.addDevice("new", "New", 5))->deviceID(), 11);
  EXPECT_EQ(registry.maxDeviceID(), 12);
}

// Kept aside, each under a key of its own: the save at quit writes this
// run's empty list, and a second bad list replaces no first one.
TEST(DeviceSettingManager, OneElementThatIsNotADictionaryLoadsNothingAndTheListIsKeptAside) {
  test::CapturedLog log({"LogDock"});
  const SettingsValue unreadable = SettingsValue::Array{saved(1, "a"), "not a device"};
  InMemorySettingsStore store({{"devices", unreadable}});
  SimulatedPlatform sim(store);
  DeviceSettingManager registry(sim.services);
  EXPECT_TRUE(registry.deviceSettingList().empty());
  EXPECT_TRUE(log.contains(R"(Devices to load: [["device": "a", "deviceID": 1], "not a device"])"));
  registry.synchronize();
  store.setValue("devices", "second");
  DeviceSettingManager again(sim.services);
  EXPECT_EQ(store.value("devices.unreadable-20270115-080000"), unreadable);
  EXPECT_EQ(store.value("devices.unreadable-20270115-080000-2"), SettingsValue("second"));
}

TEST(DeviceSettingManager, SortsByNameIgnoringCaseAndKeepsEqualNamesInOrder) {
  InMemorySettingsStore store(
      {{"devices", SettingsValue::Array{saved(1, "b"), saved(2, "A"), saved(3, "a"), saved(9, "x"), saved(4, "y")}}});
  SimulatedPlatform sim(store);
  for (auto [address, name] : std::initializer_list<std::pair<const char*, std::optional<std::string>>>{
           {"b", "beta"}, {"A", "Alpha"}, {"a", "alpha"}, {"x", std::nullopt}, {"y", std::nullopt}}) {
    sim.world.addDevice(address, name, 5);
  }
  DeviceSettingManager registry(sim.services);
  registry.sort();
  // Alpha and alpha are equal and keep their order; beta follows; the two
  // without names go by ID.
  EXPECT_EQ(idsOf(registry), (std::vector<std::int64_t>{2, 3, 1, 4, 9}));
}

TEST(DeviceSettingManager, RemovingDeletesScriptsAndShortcutKeysButNotTheSavedList) {
  const SettingsValue devices = SettingsValue::Array{saved(1, "a"), saved(2, "b")};
  InMemorySettingsStore store(
      {{"devices", devices}, {"shortcutDictForDevice2", SettingsValue::Dictionary{}}, {"shortcutForDevice2", "old"}});
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
  EXPECT_EQ(store.value("devices"), devices); // until the next save

  // In a sandbox without a usable grant the files stay, and nothing is asked.
  sim.scriptsFolder.grantNeeded = true;
  registry.remove(0);
  EXPECT_EQ(sim.scriptsFolder.files.size(), 1u);
  EXPECT_TRUE(sim.scriptsFolder.prompts.empty());
}

// The welcome shows once, half a second after the first item. Listeners
// hear of the list (as none) and of each device that changed, until they
// let go, even after their registry. Going away unregisters everything and
// saves.
TEST(DeviceSettingManager, AddingShowsTheWelcomeOnceListenersHearOfEachChangeAndGoingAwaySaves) {
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  const auto timersBefore = sim.loop.activeTimers().size();
  auto registry = std::make_unique<DeviceSettingManager>(sim.services);
  std::set<const DeviceSetting*> changed;
  auto listening = registry->addChangeListener([&](const DeviceSetting* device) { changed.insert(device); });
  auto other = registry->addChangeListener([](const DeviceSetting*) {});
  const auto* keyboard = registry->add(sim.world.addDevice("a", "Keyboard", 5)).get();
  const auto shortcut = keyboard->shortCutKey();
  EXPECT_TRUE(changed.contains(nullptr));
  sim.loop.advance(0.49);
  EXPECT_TRUE(sim.windows.landingShownUnder.empty());
  sim.loop.advance(0.01);
  ASSERT_EQ(sim.windows.landingShownUnder.size(), 1u);
  EXPECT_EQ(sim.windows.landingShownUnder[0], sim.statusBar.items()[0]);
  registry->add(sim.world.addDevice("b", "Mouse", 5));
  changed.clear();
  sim.world.setConnected("a", true);
  sim.loop.advance(1);
  EXPECT_EQ(changed, std::set<const DeviceSetting*>{keyboard});
  EXPECT_EQ(sim.windows.landingShownUnder.size(), 1u);
  changed.clear();
  registry->remove(1);
  EXPECT_TRUE(changed.contains(nullptr));
  EXPECT_TRUE(sim.shortcuts.isBound(shortcut));

  listening.reset();
  changed.clear();
  registry->updateItemIcon();
  EXPECT_TRUE(changed.empty());
  registry.reset();
  other.reset();
  EXPECT_EQ(sim.world.subscriptionCount(), 0u);
  EXPECT_TRUE(sim.statusBar.items().empty());
  EXPECT_FALSE(sim.shortcuts.isBound(shortcut));
  EXPECT_EQ(sim.loop.activeTimers().size(), timersBefore); // icon timer and slow timers gone
  auto devices = *store.value("devices")->as<SettingsValue::Array>();
  EXPECT_EQ(devices.at(0).as<SettingsValue::Dictionary>()->at("deviceName"), SettingsValue("Keyboard"));
}

} // namespace lb
