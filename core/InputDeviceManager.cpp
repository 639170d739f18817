#include "core/InputDeviceManager.h"

#include "core/LogAreas.h"

namespace lb {

InputDeviceManager::InputDeviceManager(AudioHardware& hardware, Tunables& tunables, EventLoop& loop)
    : AudioDeviceManager(hardware, tunables, AudioDirection::input), loop_(loop),
      enablePeriodicUpdates_(tunables(tunable::InputDeviceManagerPeriodicUpdates)) {
  rememberCurrentDevice("launch");
  // The timer ticks even when periodic updates are off; it then does nothing.
  timer_ = std::make_unique<PXRTimer>(tunables(tunable::InputDeviceManagerTimerInterval), true, [this] {
    if (enablePeriodicUpdates_) rememberCurrentDevice("periodic");
  });
  timer_->schedule(loop_);
}

bool InputDeviceManager::onlySetIfNecessary() const { return tunables_(tunable::OnlySetInputDeviceIfNecessary); }

void InputDeviceManager::rememberCurrentDevice(const std::string& reason) {
  auto now = current();
  auto old = lastDevice_.value();
  lastDevice_.setValue(now);
  if (now) {
    if (old && *old == *now) return;
    inputLog()([&] { return "Remember current input device " + now->description() + " because " + reason; });
  } else {
    inputLog()([&] { return "Cleared current input device because " + reason; });
  }
}

void InputDeviceManager::restoreLast() {
  auto last = lastDevice_.value();
  if (!last) {
    PXR_LOG(inputLog(), "No last input device");
    return;
  }
  inputLog()([&] {
    auto now = current();
    return "Will try to restore audio input device " + last->description() + " from current " +
           (now ? "Optional(" + now->description() + ")" : std::string("nil"));
  });
  const auto finalDelay = tunables_(tunable::InputDeviceManagerFinalRestorationDelay);
  const std::pair<Seconds, std::string> attempts[] = {
      {Seconds(0), ""},
      {Seconds(2), " after 2 seconds"},
      {Seconds(5), " after 5 seconds"},
      {finalDelay, " after " + pxrDescribe(finalDelay.count()) + " seconds"}};
  for (const auto& [delay, when] : attempts) {
    loop_.postAfter(delay, [this, device = *last, when] {
      try {
        setCurrent(device);
      } catch (const AudioError&) {
        PXR_LOG_ERROR("Unable to set input device" + when + ": " + device.description());
      }
    });
  }
}

} // namespace lb
