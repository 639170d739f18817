#pragma once

#include "core/DeviceSettingManager.h"
#include "sim/SimBehaviours.h"
#include "tests/support/SimulatedPlatform.h"

#include <memory>

namespace lb::test {

// A simulated platform with a registry and one device added through it, in
// the tray and observed, as after a user added it.
struct SimulatedDevice {
  explicit SimulatedDevice(SettingsValue::Dictionary settings = {}, std::uint32_t majorClass = 5,
                           std::string name = "Keyboard")
      : store(std::move(settings)), sim(store) {
    sim.world.addDevice(address, std::move(name), majorClass);
    device = sim.world.device(address);
    registry = std::make_unique<DeviceSettingManager>(sim.services);
    setting = registry->add(address).value().shared_from_this();
    sim.loop.runDue();
  }

  SimStatusBar::Item& item() { return *sim.statusBar.items().at(0); }

  const std::string address = "00-11-22-33-44-55";
  InMemorySettingsStore store;
  SimulatedPlatform sim;
  std::shared_ptr<SimBluetoothDevice> device; // outlives its unpairing
  std::unique_ptr<DeviceSettingManager> registry;
  std::shared_ptr<DeviceSetting> setting;
};

} // namespace lb::test
