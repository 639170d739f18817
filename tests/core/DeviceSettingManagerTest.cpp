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

// IDs missing, repeated or out of range get fresh ones.
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
  sim.world.addDevice("00:1B:66:00:00:0B", "New", 5);
  EXPECT_EQ(registry.add("00:1B:66:00:00:0B").value().deviceID(), 11);
  EXPECT_EQ(registry.maxDeviceID(), 12);
}

// Every door (the window, the chooser, the bus) adds and removes through
// these, and is told the same outcomes; each change is saved at once.
TEST(DeviceSettingManager, AddAndRemoveSayWhatWentWrongAndSaveAtOnce) {
  using enum DeviceSettingManager::AddError;
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  sim.world.addDevice("00:1B:66:00:00:01", "Mouse", 5);
  sim.world.addDevice("00-1b-66-00-00-02", "Keyboard", 5);
  DeviceSettingManager registry(sim.services);
  auto saved = [&] { return store.value("devices")->as<SettingsValue::Array>()->size(); };

  EXPECT_EQ(registry.add("00:1B:66:00:00").failure(), invalid);
  EXPECT_EQ(registry.add("00:1B:66:00:00:09").failure(), unknown);
  auto& mouse = registry.add("00-1b-66-00-00-01").value();
  EXPECT_EQ(saved(), 1u);
  EXPECT_EQ(registry.add("00:1B:66:00:00:01").failure(), alreadyAdded); // however it is written
  EXPECT_EQ(registry.find("00_1B_66_00_00_01"), &mouse);
  EXPECT_EQ(registry.find("not an address"), nullptr);

  store.unwritable = "the disk is full";
  EXPECT_EQ(registry.add("00:1B:66:00:00:02").failure(), notSaved);
  EXPECT_EQ(registry.deviceSettingList().size(), 2u); // kept until the program quits
  EXPECT_EQ(registry.remove(mouse.deviceID()).failure(), DeviceSettingManager::RemoveError::notSaved);
  store.unwritable.reset();
  EXPECT_EQ(registry.remove(99).failure(), DeviceSettingManager::RemoveError::unknown);
  registry.deviceSettingList()[0]->setConnectionOnlyMode(true); // a user's choice is saved too
  EXPECT_EQ(saved(), 1u);
  EXPECT_EQ(
      store.value("devices")->as<SettingsValue::Array>()->at(0).as<SettingsValue::Dictionary>()->at("connectOnlyMode"),
      SettingsValue(true));
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

TEST(DeviceSettingManager, RemovingDeletesScriptsAndShortcutKeys) {
  const SettingsValue devices = SettingsValue::Array{saved(1, "a"), saved(2, "b")};
  InMemorySettingsStore store(
      {{"devices", devices}, {"shortcutDictForDevice2", SettingsValue::Dictionary{}}, {"shortcutForDevice2", "old"}});
  SimulatedPlatform sim(store);
  sim.world.addDevice("a", "Alpha", 5);
  sim.world.addDevice("b", "Beta", 5);
  sim.scriptsFolder.files = {{"2.connected", "x"}, {"2.disconnected", "y"}, {"1.connected", "z"}};
  DeviceSettingManager registry(sim.services);
  for (const auto& setting : registry.deviceSettingList()) setting->setupStatusItem();

  ASSERT_TRUE(registry.remove(2));
  EXPECT_EQ(idsOf(registry), std::vector<std::int64_t>{1});
  EXPECT_EQ(sim.scriptsFolder.files, (std::map<std::string, std::string>{{"1.connected", "z"}}));
  EXPECT_FALSE(store.value("shortcutDictForDevice2"));
  EXPECT_FALSE(store.value("shortcutForDevice2"));

  // In a sandbox without a usable grant the files stay, and nothing is asked.
  sim.scriptsFolder.grantNeeded = true;
  registry.remove(1);
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
  sim.world.addDevice("00:1B:66:00:00:01", "Keyboard", 5);
  sim.world.addDevice("00:1B:66:00:00:02", "Mouse", 5);
  const auto* keyboard = &registry->add("00:1B:66:00:00:01").value();
  const auto shortcut = keyboard->shortCutKey();
  EXPECT_TRUE(changed.contains(nullptr));
  sim.loop.advance(0.49);
  EXPECT_TRUE(sim.windows.landingShownUnder.empty());
  sim.loop.advance(0.01);
  ASSERT_EQ(sim.windows.landingShownUnder.size(), 1u);
  EXPECT_EQ(sim.windows.landingShownUnder[0], sim.statusBar.items()[0]);
  registry->add("00:1B:66:00:00:02");
  changed.clear();
  sim.world.setConnected("00:1B:66:00:00:01", true);
  sim.loop.advance(1);
  EXPECT_EQ(changed, std::set<const DeviceSetting*>{keyboard});
  EXPECT_EQ(sim.windows.landingShownUnder.size(), 1u);
  changed.clear();
  registry->remove(2);
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
