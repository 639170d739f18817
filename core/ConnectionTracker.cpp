#include "core/ConnectionTracker.h"

#include "core/DeviceSetting.h"
#include "core/LogAreas.h"

namespace lb {

using namespace std::chrono_literals;

namespace {
std::string describe(const std::optional<bool>& value) { return pxrDescribe(value); }
} // namespace

std::function<void()> ConnectionTracker::updateLater(ConnectionUpdateReason reason) const {
  return [weak = owner_.weak_from_this(), reason = std::move(reason)] {
    if (auto self = weak.lock()) self->updateConnectionState(reason);
  };
}

void ConnectionTracker::startTimer() {
  if (!tunables_(tunable::ConnectionUpdateUseTimer)) return;
  timer_ = std::make_unique<PXRTimer>(tunables_(tunable::ConnectionUpdateTimerInterval), true,
                                      updateLater(ConnectionUpdateReason::timer()));
  timer_->schedule(loop_);
}

void ConnectionTracker::registerNotifications() {
  disconnectObserver_.reset();
  if (tunables_(tunable::DeviceSettingDisableDisconnectObservation)) return;
  auto found = owner_.device();
  if (!found) return;
  disconnectObserver_ = bluetooth_.registerForDisconnectNotification(
      *found, [weak = owner_.weak_from_this()](const BluetoothNotification& notification,
                                               const std::shared_ptr<BluetoothDevice>& gone) {
        if (auto self = weak.lock()) self->tracker().deviceDisconnected(notification, gone);
      });
}

void ConnectionTracker::deviceConnected(const BluetoothNotification& notification) {
  PXR_LOG(notificationsLog(), "Device connected:", owner_.description(), owner_.outputFixer().state());
  loop_.postAfter(100ms, updateLater(ConnectionUpdateReason::connectedNotification(notification)));
}

void ConnectionTracker::deviceDisconnected(const BluetoothNotification& notification,
                                           const std::shared_ptr<BluetoothDevice>& gone) {
  PXR_LOG(notificationsLog(), "deviceDisconnected notification:", notification, "device:", owner_.description(),
          owner_.outputFixer().state());
  owner_.stopProgress();
  if (!gone) {
    PXR_LOG_ERROR("Nil device disconnected:", notification);
    return;
  }
  loop_.post([weak = owner_.weak_from_this(), notification] {
    auto self = weak.lock();
    if (!self) return;
    self->outputFixer().didDisconnect();
    self->updateConnectionState(ConnectionUpdateReason::disconnectedNotification(notification));
  });
}

void ConnectionTracker::updateConnectionState(const ConnectionUpdateReason& reason) {
  auto found = owner_.device();
  if (!found) return;
  const auto wasConnected = isConnected_;
  const auto wasAudioOutput = isAudioOutput_;
  const auto wasPotentialAudioOutput = isPotentialAudioOutput_;
  if (found->isConnected()) {
    // A new connection reads battery levels afresh; later updates keep the
    // cached ones for their staleness interval.
    if (wasConnected != true) deviceInfoCache_.remove(&owner_);
    isConnected_ = true;
    if (tunables_(tunable::EnableAudioOutput)) {
      if (isPotentialAudioOutput_ != true) isPotentialAudioOutput_ = outputDeviceManager_.isPotentialOutput(owner_);
      if (isPotentialAudioOutput_ == true) isAudioOutput_ = outputDeviceManager_.isCurrent(owner_);
    }
  } else {
    isConnected_ = false;
    isAudioOutput_ = false;
    awaitedOutput_.reset();
  }
  const auto because = [&] { return " " + owner_.description() + " because " + reason.description(); };
  if (isConnected_ != wasConnected) {
    isConnectedLog()([&] { return "isConnected is now " + describe(isConnected_) + because(); });
    if (!wasConnected) {
      connectLog()([&] {
        return "Previous connection state was unknown: " + owner_.description() +
               " so won't run script or change input";
      });
    } else if (*isConnected_) {
      reactToConnection();
    } else {
      reactToDisconnection();
    }
    owner_.stopProgress();
  }
  if (awaitedOutput_ && isPotentialAudioOutput_ == true) setAwaitedOutput();
  if (isAudioOutput_ != wasAudioOutput) {
    outputLog()([&] { return "isAudioOutput is now " + describe(isAudioOutput_) + because(); });
    if (isAudioOutput_ == true) {
      owner_.outputFixer().didDetectCorrectAudioOutput();
      reactToSettingAudioOutput();
    }
    owner_.updateButtonImage();
  }
  if (isPotentialAudioOutput_ != wasPotentialAudioOutput) {
    outputLog()([&] { return "isPotentialAudioOutput is now " + describe(isPotentialAudioOutput_) + because(); });
    owner_.updateButtonImage();
  }
}

void ConnectionTracker::reactToConnection() {
  connectLog()([&] { return "Was not already connected: " + owner_.description() + " so will try script and input"; });
  fastTimer_ = std::make_unique<PXRTimer>(tunables_(tunable::ConnectionUpdateFastTimerInterval), true,
                                          updateLater(ConnectionUpdateReason::fastTimer()));
  fastTimer_->schedule(loop_);
  // Each connection schedules one drop, which ends whatever fast timer is
  // running by then, even one that a later connection started.
  loop_.postAfter(tunables_(tunable::ConnectionUpdateFastTimerDuration), [weak = owner_.weak_from_this()] {
    if (auto self = weak.lock()) self->tracker().fastTimer_.reset();
  });

  auto& connection = owner_.connection();
  if (connection.isManuallyInitiatedConnection()) {
    if (tunables_(tunable::EnableAutoSettingAudioOutput)) setOutputForManualConnection();
    connection.setManuallyInitiatedConnection(false);
  }

  const bool deferToOutput = isPotentialAudioOutput_ == true &&
                             tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput);
  if (!deferToOutput) {
    scriptLog()([&] {
      return "Connect script because potential " + describe(isPotentialAudioOutput_) + " and output setting " +
             pxrDescribe(tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput)) + ": " + owner_.description();
    });
    lastConnectionScriptRun_ = loop_.now();
    owner_.runScript(ScriptType::connected);
  }
  if (owner_.keepDefaultAudioInput()) inputDeviceManager_.restoreLast();
}

void ConnectionTracker::audioDevicesChanged() {
  if (isConnected_ == true) updateConnectionState(ConnectionUpdateReason::audioDevicesChanged());
}

// An audio device still to appear (Linux makes it after the link) is
// waited for; one that will not, because the device is no audio device,
// counts as set by the system.
void ConnectionTracker::setOutputForManualConnection() {
  const auto device = owner_.device();
  const bool mayBecomeOutput = tunables_(tunable::EnableAudioOutput) && device &&
                               device->majorDeviceClass() == OutputDeviceManager::audioMajorClass;
  if (isAudioOutput_ != true && isPotentialAudioOutput_ == true && outputDeviceManager_.isPotentialOutput(owner_)) {
    setOutputBecauseManual();
  } else if (isAudioOutput_ != true && mayBecomeOutput) {
    awaitOutput();
  } else {
    owner_.outputFixer().didAutomaticallySetAudioOutput();
    outputLog()([&] {
      return "No need to set sound output device because it was already set automatically: " + owner_.description();
    });
  }
}

void ConnectionTracker::setOutputBecauseManual() {
  outputLog()(
      [&] { return "Setting sound output device because connection was manually initiated: " + owner_.description(); });
  setDefaultAudioOutput();
}

void ConnectionTracker::awaitOutput() {
  const auto window = tunables_(tunable::ManualConnectionAudioOutputWindow);
  outputLog()([&] {
    return "Waiting up to " + pxrDescribe(window.count()) + " s for the sound output device of " + owner_.description();
  });
  awaitedOutput_ = ++outputWaits_;
  loop_.postAfter(window, [weak = owner_.weak_from_this(), wait = *awaitedOutput_] {
    if (auto self = weak.lock()) self->tracker().endOutputWait(wait);
  });
}

// The device's audio device is listed now, or it became the output by other means.
void ConnectionTracker::setAwaitedOutput() {
  if (isAudioOutput_ == true) {
    awaitedOutput_.reset();
  } else if (outputDeviceManager_.isPotentialOutput(owner_)) {
    awaitedOutput_.reset();
    setOutputBecauseManual();
  }
}

// No audio device came: the set fails, and the output fixer reconnects.
void ConnectionTracker::endOutputWait(std::uint64_t wait) {
  if (awaitedOutput_ != wait) return;
  awaitedOutput_.reset();
  PXR_LOG_ERROR("No sound output device appeared in time for", owner_.description());
  setDefaultAudioOutput();
}

void ConnectionTracker::reactToDisconnection() {
  connectLog()([&] { return "Device disconnected: " + owner_.description(); });
  if (owner_.outputFixer().didDisconnect()) return;
  owner_.runScript(ScriptType::disconnected);
  inputDeviceManager_.rememberCurrentDevice("disconnected");
}

bool ConnectionTracker::setOutputInsteadOfDisconnecting(const BluetoothDevice& device) {
  if (!device.isConnected() || !tunables_(tunable::EnableAudioOutput) || isAudioOutput_ != false ||
      isPotentialAudioOutput_ != true) {
    return false;
  }
  connectLog()([&] { return "Already connected but trying to set audio output: " + owner_.description(); });
  if (tunables_(tunable::RememberAudioInputWhenSettingAudioOutput)) {
    inputDeviceManager_.rememberCurrentDevice("setting output device");
  }
  setDefaultAudioOutput();
  return true;
}

void ConnectionTracker::setDefaultAudioOutput() {
  try {
    outputDeviceManager_.setCurrent(owner_);
    owner_.outputFixer().didManuallySetAudioOutput();
  } catch (const AudioError& error) {
    // Other failures were logged where they happened; only a missing device
    // can be repaired by reconnecting.
    if (error.kind() == AudioError::Kind::noMatchingAudioDevice) owner_.outputFixer().didFailToSetAudioOutput();
  }
}

void ConnectionTracker::reactToSettingAudioOutput() {
  if (tunables_(tunable::FixAudioInputWhenSettingAudioOutput) && owner_.keepDefaultAudioInput()) {
    PXR_LOG(inputLog(), "Fixing audio input because audio output was set to:", owner_.description());
    inputDeviceManager_.restoreLast();
  }
  if (!tunables_(tunable::RunConnectionScriptWhenSettingAudioOutput)) return;
  const auto now = loop_.now();
  if (lastConnectionScriptRun_ &&
      std::chrono::abs(timeBetween(*lastConnectionScriptRun_, now)) < tunables_(tunable::ConnectionScriptInterval)) {
    PXR_LOG(scriptLog(), "Skipping connect script because audio output set because just ran:", owner_.description());
    return;
  }
  PXR_LOG(scriptLog(), "Connect script because audio output set:", owner_.description());
  lastConnectionScriptRun_ = now;
  owner_.runScript(ScriptType::connected);
}

} // namespace lb
