#pragma once

#include "core/AudioDeviceManager.h"
#include "foundation/PXRAtomic.h"
#include "foundation/PXRTimer.h"
#include "ports/EventLoop.h"

#include <memory>

namespace lb {

// Keeps remembering the current sound input, and restores it on request:
// connecting a headset tends to take the microphone over.
class InputDeviceManager final : public AudioDeviceManager {
public:
  // Remembers the input now ("launch") and then every
  // "InputDeviceManagerTimerInterval" seconds.
  InputDeviceManager(AudioHardware& hardware, Tunables& tunables, EventLoop& loop);

  bool onlySetIfNecessary() const override;
  void rememberCurrentDevice(const std::string& reason);
  // Four independent attempts: at once, after 2 and 5 seconds, and after the
  // final delay.
  void restoreLast();

private:
  EventLoop& loop_;
  PXRAtomic<std::optional<Device>> lastDevice_{std::nullopt};
  const bool enablePeriodicUpdates_;
  std::unique_ptr<PXRTimer> timer_;
};

} // namespace lb
