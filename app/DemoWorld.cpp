#include "app/DemoWorld.h"

#include "core/SettingKeys.h"
#include "sim/SimBehaviours.h"

#include <algorithm>

namespace lb {

DemoWorld::DemoWorld(EventLoop& loop) : world(loop) {
  audio.makeDefault(AudioDirection::output, audio.addDevice({"Built-in Speakers", "builtin.speakers", true, false}));
  audio.makeDefault(AudioDirection::input,
                    audio.addDevice({"Built-in Microphone", "builtin.microphone", false, false}));

  // Each device with the icon a first run gives it.
  // Each with its true class: major 4 audio (minor 1 a headset, 6
  // headphones, 5 a loudspeaker), 5 a peripheral (minor 32 pointing, 16 a
  // keyboard).
  auto add = [&](const std::string& address, const std::string& name, std::uint32_t majorClass,
                 std::uint32_t minorClass, MenuBarIconOption icon) -> auto& {
    icons_[address] = icon;
    return world.addDevice(address, name, majorClass, minorClass);
  };

  auto& headset = add("00:1D:43:A0:00:01", "Lantern Headset", 4, 1, MenuBarIconOption::headphones);
  headset.setBatteryProperty("batteryPercentSingle", 80);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, headset.addressString(), "Lantern Headset",
                                                        SimHeadsetAudio::Options{.delay = 0.8, .hasMicrophone = true}));

  auto& buds = add("00:1D:43:A0:00:02", "Lantern Buds", 4, 6, MenuBarIconOption::surfaceEarbuds);
  buds.setBatteryProperty("batteryPercentLeft", 60);
  buds.setBatteryProperty("batteryPercentRight", 75);
  buds.setBatteryProperty("batteryPercentCase", 90);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, buds.addressString(), "Lantern Buds",
                                                        SimHeadsetAudio::Options{.delay = 0.4}));
  // Back in the case, they charge up to where the demo started.
  budsBattery_ = std::make_unique<PXRTimer>(Seconds(3), true, [&buds] {
    const int step = buds.isConnected() ? -1 : 2;
    for (const auto& [side, full] : {std::pair{"batteryPercentLeft", 60}, std::pair{"batteryPercentRight", 75}}) {
      const auto level = buds.batteryProperty(side);
      const auto* now = level ? level->as<std::int64_t>() : nullptr;
      buds.setBatteryProperty(side, std::clamp<std::int64_t>((now ? *now : full) + step, 1, full));
    }
  });
  budsBattery_->schedule(loop);

  add("00:1D:43:A0:00:03", "Lantern Mouse", 5, 32, MenuBarIconOption::mouse)
      .setBatteryProperty("batteryPercentSingle", 45);
  add("00:1D:43:A0:00:04", "Lantern Keyboard", 5, 16, MenuBarIconOption::keyboard);

  // Every other connect pages in vain, and so does its retry: the demo shows
  // the connection alert and its Help.
  auto& speaker = add("00:1D:43:A0:00:05", "Lantern Speaker", 4, 5, MenuBarIconOption::cylinderSpeaker);
  const auto pagesInVain = sim::failsAfter(sim::pageTimeoutResult(), 3.0);
  speaker.setConnectBehaviour(sim::cycles({sim::succeedsAfter(1.5), pagesInVain, pagesInVain}));
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, speaker.addressString(), "Lantern Speaker",
                                                        SimHeadsetAudio::Options{.delay = 0.5}));
}

void DemoWorld::seed(UserDefaults& defaults) const {
  if (defaults.object(settingKey::devices)) return;
  auto paired = world.pairedDevices();
  std::ranges::sort(paired, {}, &PairedDevice::name); // as the registry would sort them
  SettingsValue::Array devices;
  for (const auto& each : paired) {
    devices.emplace_back(SettingsValue::Dictionary{
        {deviceOption::deviceID, static_cast<std::int64_t>(devices.size() + 1)},
        {deviceOption::device, each.address},
        {deviceOption::icon, std::string(rawValue(icons_.at(each.address)))},
    });
  }
  defaults.setValue(settingKey::devices, std::move(devices));
}

} // namespace lb
