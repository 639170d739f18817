#include "app/DemoWorld.h"

#include "sim/SimBehaviours.h"

namespace lb {

DemoWorld::DemoWorld(EventLoop& loop) : world(loop) {
  audio.makeDefault(AudioDirection::output, audio.addDevice({"Built-in Speakers", "builtin.speakers", true, false}));
  audio.makeDefault(AudioDirection::input,
                    audio.addDevice({"Built-in Microphone", "builtin.microphone", false, false}));

  // Each device with the icon a first run gives it.
  auto add = [&](const std::string& address, const std::string& name, std::uint32_t majorClass,
                 MenuBarIconOption icon) -> auto& {
    icons_[address] = icon;
    return world.addDevice(address, name, majorClass);
  };

  auto& headset = add("00:1D:43:A0:00:01", "Lantern Headset", 4, MenuBarIconOption::headphones);
  headset.setBatteryProperty("batteryPercentSingle", 80);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, headset.addressString(), "Lantern Headset",
                                                        SimHeadsetAudio::Options{.delay = 0.8, .hasMicrophone = true}));

  auto& buds = add("00:1D:43:A0:00:02", "Lantern Buds", 4, MenuBarIconOption::surfaceEarbuds);
  buds.setBatteryProperty("batteryPercentLeft", 60);
  buds.setBatteryProperty("batteryPercentRight", 75);
  buds.setBatteryProperty("batteryPercentCase", 90);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, buds.addressString(), "Lantern Buds",
                                                        SimHeadsetAudio::Options{.delay = 0.4}));

  add("00:1D:43:A0:00:03", "Lantern Mouse", 5, MenuBarIconOption::mouse).setBatteryProperty("batteryPercentSingle", 45);
  add("00:1D:43:A0:00:04", "Lantern Keyboard", 5, MenuBarIconOption::keyboard);

  // Every third connect attempt pages in vain; the retry then connects.
  auto& speaker = add("00:1D:43:A0:00:05", "Lantern Speaker", 4, MenuBarIconOption::cylinderSpeaker);
  speaker.setConnectBehaviour([attempts = 0](SimCallContext& call) mutable {
    return ++attempts % 3 == 0 ? sim::failsAfter(sim::pageTimeoutResult(), 3.0)(call) : sim::succeedsAfter(1.5)(call);
  });
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, speaker.addressString(), "Lantern Speaker",
                                                        SimHeadsetAudio::Options{.delay = 0.5}));
}

void DemoWorld::addTo(DeviceSettingManager& registry) {
  if (!registry.deviceSettingList().empty()) return;
  for (const auto& paired : world.pairedDevices()) {
    auto device = world.device(paired.address);
    if (auto setting = device ? registry.add(*device) : nullptr) setting->setIcon(icons_.at(paired.address));
  }
}

} // namespace lb
