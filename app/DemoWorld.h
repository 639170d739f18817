#pragma once

#include "core/DeviceSettingManager.h"
#include "foundation/PXRTimer.h"
#include "sim/SimAudioSystem.h"
#include "sim/SimBatterySources.h"
#include "sim/SimBluetooth.h"
#include "sim/SimHeadsetAudio.h"

#include <map>
#include <memory>
#include <vector>

namespace lb {

// The devices of `lanternbud --demo`, simulated in real time: a headset
// whose speaker appears a moment after it connects, earbuds with left and
// right batteries, a mouse, a keyboard, and a speaker whose every other
// connect times out. The computer has its own speakers and microphone.
// The earbuds run down while connected, a point every 3 seconds, through
// the low-battery warnings, and charge in their case while disconnected.
class DemoWorld {
public:
  explicit DemoWorld(EventLoop& loop);

  // A first demo run starts with every demo device saved, so that it opens
  // in the tray, not in the settings window.
  void seed(UserDefaults& defaults) const;

  SimBluetoothWorld world;
  SimBluetooth bluetooth{world};
  SimAudioSystem audio;
  SimBatterySources batterySources;

private:
  std::vector<std::unique_ptr<SimHeadsetAudio>> headsets_;
  std::map<std::string, MenuBarIconOption> icons_; // by address
  std::unique_ptr<PXRTimer> budsBattery_;
};

} // namespace lb
