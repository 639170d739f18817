#include "app/DemoWorld.h"

#include "sim/SimBehaviours.h"

#include <map>

namespace lb {

DemoWorld::DemoWorld(EventLoop& loop) : world(loop) {
  audio.makeDefault(AudioDirection::output, audio.addDevice({"Built-in Speakers", "builtin.speakers", true, false}));
  audio.makeDefault(AudioDirection::input, audio.addDevice({"Built-in Microphone", "builtin.microphone", false, false}));

  auto& headset = world.addDevice("00:1D:43:A0:00:01", "Lantern Headset", 4);
  headset.setBatteryProperty("batteryPercentSingle", 80);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, headset.addressString(), "Lantern Headset",
                                                        SimHeadsetAudio::Options{.delay = 0.8, .hasMicrophone = true}));

  auto& buds = world.addDevice("00:1D:43:A0:00:02", "Lantern Buds", 4);
  buds.setBatteryProperty("batteryPercentLeft", 60);
  buds.setBatteryProperty("batteryPercentRight", 75);
  buds.setBatteryProperty("batteryPercentCase", 90);
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, buds.addressString(), "Lantern Buds",
                                                        SimHeadsetAudio::Options{.delay = 0.4}));

  world.addDevice("00:1D:43:A0:00:03", "Lantern Mouse", 5).setBatteryProperty("batteryPercentSingle", 45);
  world.addDevice("00:1D:43:A0:00:04", "Lantern Keyboard", 5);

  // Every third connect attempt pages in vain; the retry then connects.
  auto& speaker = world.addDevice("00:1D:43:A0:00:05", "Lantern Speaker", 4);
  speaker.setConnectBehaviour([attempts = 0](SimCallContext& call) mutable {
    return ++attempts % 3 == 0 ? sim::failsAfter(sim::pageTimeoutResult(), 3.0)(call) : sim::succeedsAfter(1.5)(call);
  });
  headsets_.push_back(std::make_unique<SimHeadsetAudio>(world, audio, loop, speaker.addressString(), "Lantern Speaker",
                                                        SimHeadsetAudio::Options{.delay = 0.5}));
}

void DemoWorld::addTo(DeviceSettingManager& registry) {
  if (!registry.deviceSettingList().empty()) return;
  const std::map<std::string, MenuBarIconOption> icons{
      {"Lantern Headset", MenuBarIconOption::headphones}, {"Lantern Buds", MenuBarIconOption::surfaceEarbuds},
      {"Lantern Mouse", MenuBarIconOption::mouse},         {"Lantern Keyboard", MenuBarIconOption::keyboard},
      {"Lantern Speaker", MenuBarIconOption::cylinderSpeaker}};
  for (const auto& paired : world.pairedDevices()) {
    auto device = world.device(paired.address);
    auto setting = device ? registry.add(*device) : nullptr;
    if (auto icon = icons.find(paired.name); setting && icon != icons.end()) setting->setIcon(icon->second);
  }
}

} // namespace lb
